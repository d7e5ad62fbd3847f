// A line of the journal.
#include "evidence/journal_line.h"
#include "promise.h"

#include <algorithm>

void readInput(const std::string& input) {
  const auto line = watch::parseJournalLine(input);
  if (!line) {
    return;
  }
  const std::string text = watch::journalText(*line);
  require(std::ranges::count(text, '\n') == 1 && text.ends_with('\n'), "a line is one line");
  const auto again = watch::parseJournalLine({text.data(), text.size() - 1});
  require(again && watch::journalText(*again) == text, "what was read is kept as it is");
}
