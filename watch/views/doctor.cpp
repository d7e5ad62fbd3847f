#include "views/doctor.h"

#include "views/words.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <vector>

namespace watch {

namespace {

constexpr std::size_t kLevelWidth = 5;
constexpr std::size_t kSubjectWidth = 10;
constexpr std::size_t kIndent = kLevelWidth + kSubjectWidth;
constexpr std::size_t kLeastWidth = 40;

struct Word {
  const char* text;
  Tone tone;
};

Word wordFor(Level level) {
  switch (level) {
    case Level::well:
      return {"ok", Tone::good};
    case Level::unknown:
      return {"?", Tone::dim};
    case Level::look:
      return {"warn", Tone::warning};
    case Level::mend:
      break;
  }
  return {"FAIL", Tone::bad};
}

/// Breaks `text` at blanks into lines of up to `width` characters. A longer word has its own.
std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines = {""};
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    std::string& line = lines.back();
    if (line.empty()) {
      line = word;
    } else if (columns(line) + 1 + columns(word) <= width) {
      line.append(" ").append(word);
    } else {
      lines.emplace_back(word);
    }
  }
  return lines;
}

std::string findingView(const Finding& finding, const Style& style) {
  const std::size_t width = std::max(style.width, kLeastWidth) - kIndent;
  std::vector<std::string> lines = wrapped(finding.text, width);
  // What is to be copied is never broken.
  if (!finding.remedy.empty()) {
    if (columns(lines.back()) + 2 + columns(finding.remedy) <= width) {
      lines.back().append("  ").append(finding.remedy);
    } else {
      lines.push_back("  " + finding.remedy);
    }
  }
  const Word word = wordFor(finding.level);
  std::string text = paint(style, word.tone, left(word.text, kLevelWidth)) +
                     left(finding.subject, kSubjectWidth) + lines.front() + "\n";
  for (auto line = lines.begin() + 1; line != lines.end(); ++line) {
    text += std::string(kIndent, ' ') + *line + "\n";
  }
  return text;
}

/// "1 thing to mend, 2 to look at, 1 not known."
std::string countsOf(const Findings& findings) {
  const auto count = [&](Level level) {
    return std::ranges::count(findings, level, &Finding::level);
  };
  std::vector<std::string> counts;
  const auto add = [&](Level level, const char* what) {
    if (const auto number = count(level); number > 0) {
      counts.push_back(counts.empty()
                           ? counted(static_cast<std::size_t>(number), "thing", "things") + what
                           : fmt::format("{}{}", number, what));
    }
  };
  add(Level::mend, " to mend");
  add(Level::look, " to look at");
  add(Level::unknown, " not known");
  return counts.empty() ? "All well." : fmt::format("{}.", fmt::join(counts, ", "));
}

}  // namespace

std::string doctorView(const Findings& findings, const Style& style) {
  std::string text;
  for (const Finding& finding : findings) {
    text += findingView(finding, style);
  }
  return text + "\n" + countsOf(findings) + "\n";
}

}  // namespace watch
