// The files that the page is made of, as the build has embedded them: embed.cmake writes the
// source.
#pragma once

#include <string_view>

namespace watch {

/// The skeleton, with a name in braces where something is put in.
extern const std::string_view kPage;
extern const std::string_view kStyle;
/// The SHA-256 of the style in base64, by which the page's policy knows it.
extern const std::string_view kStyleHash;

}  // namespace watch
