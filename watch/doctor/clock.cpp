#include "doctor/checks.h"
#include "doctor/tool.h"

#include <chrono>
#include <fmt/format.h>

namespace watch {

Findings checkClock(const Workstation& workstation) {
  constexpr char kSubject[] = "clock";
  constexpr std::chrono::seconds kLimit{3};
  const auto timedatectl = findProgram("timedatectl", workstation.path);
  if (!timedatectl) {
    return {{Level::unknown, kSubject,
             "whether the network sets it is not known: there is no timedatectl"}};
  }
  const Answer answer = ask({*timedatectl, "show", "--property=NTPSynchronized", "--value"},
                            workstation.path, kLimit);
  const std::string said = firstLine(answer.text);
  if (answer.succeeded() && said == "yes") {
    return {{Level::well, kSubject, "set by the network"}};
  }
  if (answer.succeeded() && said == "no") {
    return {{Level::look, kSubject,
             "not set by the network, so that runs may have wrong times. Switch it on:",
             "sudo timedatectl set-ntp true"}};
  }
  return {{Level::unknown, kSubject,
           fmt::format("whether the network sets it is not known: {}", failure(answer))}};
}

}  // namespace watch
