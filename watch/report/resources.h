// The files that the page is made of, as the build has embedded them: embed.cmake writes the
// source.
#pragma once

#include <string_view>

namespace watch {

/// The skeleton, with a name in braces where something is put in.
extern const std::string_view kPage;
extern const std::string_view kStyle;
/// The SHA-256 in base64, by which the page's policy knows it.
extern const std::string_view kStyleHash;

/// The script of the explorer, and the library that it needs. Both are empty where the build has
/// not found the library.
extern const std::string_view kLibrary;
extern const std::string_view kLibraryHash;
extern const std::string_view kExplorer;
extern const std::string_view kExplorerHash;

}  // namespace watch
