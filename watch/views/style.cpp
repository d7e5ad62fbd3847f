#include "views/style.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fmt/color.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr std::size_t kBars = 8;
constexpr const char* kBlocks[kBars] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr const char* kDigits[kBars] = {"1", "2", "3", "4", "5", "6", "7", "8"};

fmt::text_style colours(Tone tone) {
  switch (tone) {
    case Tone::strong:
      return fmt::emphasis::bold;
    case Tone::dim:
      return fmt::emphasis::faint;
    case Tone::good:
      return fmt::fg(fmt::terminal_color::green);
    case Tone::warning:
      return fmt::fg(fmt::terminal_color::yellow);
    case Tone::bad:
      return fmt::fg(fmt::terminal_color::red) | fmt::emphasis::bold;
    case Tone::accent:
      return fmt::fg(fmt::terminal_color::cyan);
    case Tone::plain:
      break;
  }
  return {};
}

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

Style styleOfStandardOutput() {
  return styleOf(STDOUT_FILENO);
}

Style styleOf(int descriptor) {
  std::setlocale(LC_CTYPE, "");
  Style style;
  style.isTerminal = isatty(descriptor) != 0;
  const char* const terminal = std::getenv("TERM");
  const bool isDumb = terminal == nullptr || std::strcmp(terminal, "dumb") == 0;
  style.canRewrite = style.isTerminal && !isDumb;
  style.hasColour = style.canRewrite && !isSet("NO_COLOR");
  style.hasBars = std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
  winsize size{};
  if (style.isTerminal && ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    style.width = size.ws_col;
  }
  return style;
}

std::string paint(const Style& style, Tone tone, std::string_view text) {
  return style.hasColour && tone != Tone::plain ? fmt::format(colours(tone), "{}", text)
                                                : std::string(text);
}

Tone tone(Class runClass) {
  constexpr Tone kTones[] = {Tone::good, Tone::warning, Tone::bad};
  return kTones[static_cast<std::size_t>(runClass)];
}

std::string bar(const Style& style, double value, double most) {
  const double share = most > 0 ? std::clamp(value / most, 0.0, 1.0) : 0;
  const auto place = static_cast<std::size_t>(std::lround(share * (kBars - 1)));
  return (style.hasBars ? kBlocks : kDigits)[place];
}

const char* noBar(const Style& style) {
  return style.hasBars ? "·" : ".";
}

std::string sparkline(const Style& style, std::span<const std::optional<double>> values,
                      double most) {
  std::string line;
  for (const std::optional<double>& value : values) {
    line += value ? bar(style, *value, most) : noBar(style);
  }
  return line;
}

std::size_t columns(std::string_view text) {
  std::size_t count = 0;
  bool isInColour = false;
  for (const char c : text) {
    isInColour = isInColour ? c != 'm' : c == '\x1b';
    // The bytes of a character in UTF-8 but its first begin with the bits 10.
    const bool isFirst = (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    count += isInColour || !isFirst ? 0 : 1;
  }
  // The last of a colour's characters was counted.
  return count - static_cast<std::size_t>(std::ranges::count(text, '\x1b'));
}

std::string right(std::string_view text, std::size_t width) {
  const std::size_t length = columns(text);
  return std::string(width > length ? width - length : 0, ' ').append(text);
}

std::string left(std::string_view text, std::size_t width) {
  const std::size_t length = columns(text);
  return std::string(text).append(width > length ? width - length : 0, ' ');
}

std::string trimmed(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace watch
