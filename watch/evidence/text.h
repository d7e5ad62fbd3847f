// Reads numbers and columns out of a line.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace watch {

/// Returns the number that `text` is from its first to its last character, or nothing. A double may
/// be "nan" or "inf".
template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const std::from_chars_result read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end && !text.empty() ? std::optional(number)
                                                                    : std::nullopt;
}

/// Takes the number off the front of `text` with which it begins, or nothing.
template <class Number>
std::optional<Number> takeNumber(std::string_view& text) {
  Number number{};
  const std::from_chars_result read =
      std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec != std::errc()) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
  return number;
}

/// Fills `columns` with what stands between the commas of `line`. Returns false when it has another
/// number of columns.
template <std::size_t Count>
bool splitColumns(std::string_view line, std::string_view (&columns)[Count]) {
  for (std::size_t i = 0; i + 1 < Count; ++i) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) {
      return false;
    }
    columns[i] = line.substr(0, comma);
    line.remove_prefix(comma + 1);
  }
  columns[Count - 1] = line;
  return line.find(',') == std::string_view::npos;
}

/// A tool that ends its lines by CRLF leaves a carriage return.
std::string_view withoutCarriageReturn(std::string_view text);

/// Returns `text` as it may be shown: what is no printable ASCII character is a "?". Addresses come
/// from a server that can write what it wants.
std::string printable(std::string_view text);

/// Returns the place of the comma that has `columns` columns behind it, or npos.
std::size_t commaBefore(std::string_view line, unsigned columns);

}  // namespace watch
