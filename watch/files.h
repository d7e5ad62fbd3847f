// The files that connWatch itself writes into the log directory, beside those of the tester.
//
// docs/files.md says what is in them.
#pragma once

namespace watch {

/// What the tester has printed in the latest guarded run.
inline constexpr char kRunLatest[] = "run-latest.log";

}  // namespace watch
