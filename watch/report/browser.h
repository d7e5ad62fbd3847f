// Shows a file in the user's browser.
#pragma once

#include <filesystem>

namespace watch {

/// Starts the desktop's own command (xdg-open, or open on macOS) without a shell, and waits until
/// it has passed the file on. Throws std::runtime_error when there is none or it fails.
void openInBrowser(const std::filesystem::path& file);

}  // namespace watch
