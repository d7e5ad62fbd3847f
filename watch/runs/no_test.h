// Why there was no test, in a word or two, by what iperf3 and its adapter say.
#pragma once

#include <string>

namespace watch {

/// Returns "busy", "refused", "unreachable", "unknown name", "no answer", "ended by its limit" or
/// "iperf3 missing"; `complaint` itself where it is none of these.
std::string whyNoTest(const std::string& complaint);

}  // namespace watch
