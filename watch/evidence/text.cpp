#include "evidence/text.h"

#include <algorithm>

namespace watch {

std::string_view withoutCarriageReturn(std::string_view text) {
  if (text.ends_with('\r')) {
    text.remove_suffix(1);
  }
  return text;
}

std::string printable(std::string_view text) {
  std::string shown(text);
  std::ranges::replace_if(
      shown, [](char c) { return c < ' ' || c > '~'; }, '?');
  return shown;
}

std::size_t commaBefore(std::string_view line, unsigned columns) {
  std::size_t comma = line.size();
  while (columns > 0 && comma != 0) {
    comma = line.rfind(',', comma - 1);
    if (comma == std::string_view::npos) {
      return comma;
    }
    --columns;
  }
  return columns == 0 ? comma : std::string_view::npos;
}

}  // namespace watch
