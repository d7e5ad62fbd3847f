// How views look where they are shown: colours, widths, bars.
#pragma once

#include "runs/run.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace watch {

struct Style {
  /// People read along: tables with headings for them, else fixed columns for programs.
  bool isTerminal = false;
  bool hasColour = false;
  /// The terminal shows "▁▂▃", else digits stand for them.
  bool hasBars = false;
  std::size_t width = 80;
  /// What stands there can be written anew: a terminal, and no dumb one.
  bool canRewrite = false;
};

/// Looks at where the file descriptor leads, and at NO_COLOR, TERM and the locale.
Style styleOf(int descriptor);
Style styleOfStandardOutput();

enum class Tone { plain, strong, dim, good, warning, bad, accent };

/// Returns `text` in the colours of `tone`, where there are colours.
std::string paint(const Style& style, Tone tone, std::string_view text);

/// The tone in which the class of a run is shown.
Tone tone(Class runClass);

/// Returns a bar for each value, the highest for `most`; a "·" where there is none.
std::string sparkline(const Style& style, std::span<const std::optional<double>> values,
                      double most);
/// The same for one value. The lowest bar is for what is least, not for nothing.
std::string bar(const Style& style, double value, double most);
const char* noBar(const Style& style);

/// How many columns of a terminal `text` takes: its colours take none.
std::size_t columns(std::string_view text);
/// Returns `text` with blanks before it, so that it is `width` characters wide; and behind it.
std::string right(std::string_view text, std::size_t width);
std::string left(std::string_view text, std::size_t width);
/// Returns `text` without the blanks at its end.
std::string trimmed(std::string text);

}  // namespace watch
