// Bounded writing into fixed character buffers.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string_view>

/// Formats into `dst` by printf rules and cuts what does not fit. Returns the uncut length.
template <std::size_t N>
[[gnu::format(printf, 2, 3)]] int formatInto(char (&dst)[N], const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const int length = std::vsnprintf(dst, N, format, values);
  va_end(values);
  return length;
}

/// Formats a line that ends in a newline. A line that does not fit is cut, but keeps its newline,
/// so that a file of such lines still counts right.
template <std::size_t N>
[[gnu::format(printf, 2, 3)]] void formatLineInto(char (&dst)[N], const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const int length = std::vsnprintf(dst, N, format, values);
  va_end(values);
  if (length >= static_cast<int>(N)) {
    dst[N - 2] = '\n';
  }
}

/// Copies `text` into a field that is full without a terminator: cuts what does not fit, and fills
/// what is left with zeros.
template <std::size_t N>
void copyInto(char (&dst)[N], std::string_view text) {
  const std::size_t length = text.copy(dst, N);
  std::fill(dst + length, dst + N, '\0');
}
