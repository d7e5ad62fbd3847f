#include "doctor/checks.h"
#include "doctor/tool.h"
#include "evidence/log_directory.h"
#include "evidence/ping_output.h"
#include "run_state.h"

#include <chrono>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr char kSubject[] = "ping";
constexpr std::chrono::seconds kLimit{3};

/// Returns the name and release of the ping at `path`, as "iputils 20221126".
std::string release(const std::string& path, const std::string& searchPath) {
  const Answer answer = ask({path, "-V"}, searchPath, kLimit);
  const std::string said = firstLine(answer.text);
  constexpr std::string_view kIputils = "ping from ";
  constexpr std::string_view kInetutils = "ping (";
  constexpr std::string_view kBusybox = "BusyBox v";
  if (said.starts_with(kIputils)) {
    return said.substr(kIputils.size());
  }
  if (said.starts_with(kInetutils) && said.ends_with(')')) {
    return said.substr(kInetutils.size(), said.size() - kInetutils.size() - 1);
  }
  const std::size_t busybox = answer.text.find(kBusybox);
  if (busybox == std::string::npos) {
    return "a release that it does not tell";
  }
  const std::string rest = answer.text.substr(busybox + kBusybox.size());
  return "busybox " + firstLine(rest.substr(0, rest.find(' ')));
}

/// What the tester takes from the output: all, zeros, or nothing.
enum class Reading { whole, zeros, nothing };

Reading readingOf(const std::string& output) {
  std::vector<PingOutput> outputs;
  PingOutputReader reader(outputs);
  eachLine(output, [&reader](std::string_view line, std::uint32_t number) {
    reader.take(line, 0, number);
  });
  if (outputs.empty() || !outputs.front().summaryIsRead) {
    return Reading::nothing;
  }
  return outputs.front().summaryIsWhole ? Reading::whole : Reading::zeros;
}

Finding judge(const std::string& what, Reading reading, bool hasAdapter) {
  switch (reading) {
    case Reading::whole:
      return {Level::well, kSubject,
              what + (hasAdapter ? "; the adapter gives its summary the right form"
                                 : "; its summary has the right form")};
    case Reading::zeros:
      return {Level::mend, kSubject,
              what +
                  ": its summary is not four numbers, so that the tester shows a latency of 0. "
                  "Start runs with connTester, whose adapter mends it"};
    case Reading::nothing:
      break;
  }
  return {Level::mend, kSubject,
          what +
              ": its summary does not begin with \"round-trip\", so that the tester shows no "
              "latency. Start runs with connTester, whose adapter mends it"};
}

}  // namespace

Findings checkPing(const Workstation& workstation) {
  if (!ConfigurationParameters.doPingTests) {
    return {{Level::well, kSubject, "switched off by the settings"}};
  }
  const auto inRun = findProgram("ping", workstation.pathOfRun);
  if (!inRun) {
    return {{Level::mend, kSubject, "there is none in PATH. Install one, for example with:",
             "sudo apt install iputils-ping"}};
  }
  const auto inPath = findProgram("ping", workstation.path);
  const bool hasAdapter = inRun->starts_with((workstation.programs / "ping-adapter/").string());
  const std::string what =
      inPath ? fmt::format("{} at {}", release(*inPath, workstation.path), *inPath)
             : std::string("in no folder of PATH, but where it usually is");
  // The machine itself replies always: what fails here is ping, not the network.
  const Answer answer = ask({*inRun, "-c", "1", "127.0.0.1"}, workstation.pathOfRun, kLimit);
  if (!answer.succeeded()) {
    return {{Level::mend, kSubject,
             fmt::format("{}: a ping of this machine itself fails, {}", what, failure(answer))}};
  }
  return {judge(what, readingOf(answer.text), hasAdapter)};
}

}  // namespace watch
