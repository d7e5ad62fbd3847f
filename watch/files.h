// The files that connWatch itself writes into the log directory, beside those of the tester.
//
// docs/files.md says what is in them.
#pragma once

#include <string_view>

namespace watch {

/// What the tester has printed in the latest guarded run.
inline constexpr char kRunLatest[] = "run-latest.log";

/// The journal has a file for each year: "runs-2026.jsonl".
inline constexpr std::string_view kJournalBegin = "runs-";
inline constexpr std::string_view kJournalEnd = ".jsonl";

}  // namespace watch
