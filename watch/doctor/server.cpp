#include "doctor/checks.h"
#include "doctor/tool.h"
#include "evidence/log_directory.h"
#include "evidence/ping_output.h"
#include "run_limits.h"
#include "run_state.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>
#include <memory>
#include <netdb.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "server";
constexpr char kPort[] = "5201";

/// Whether the start command takes it, which makes it part of shell command lines.
bool isAddress(std::string_view text) {
  constexpr std::string_view kMarks = ".:_%-";
  return !text.empty() && !text.starts_with('-') && std::ranges::all_of(text, [&](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           kMarks.find(c) != std::string_view::npos;
  });
}

std::string named(const Workstation& workstation) {
  return workstation.address + workstation.addressOrigin;
}

/// Returns the time of the reply in `output`, if there is one.
std::optional<double> replyTime(const std::string& output) {
  std::vector<PingOutput> outputs;
  PingOutputReader reader(outputs);
  eachLine(output, [&reader](std::string_view line, std::uint32_t number) {
    reader.take(line, 0, number);
  });
  return !outputs.empty() && !outputs.front().replies.empty()
             ? std::optional(std::ranges::min(outputs.front().replies))
             : std::nullopt;
}

Finding ping(const Workstation& workstation) {
  constexpr std::chrono::seconds kLimit{2};
  const auto tool = findProgram("ping", workstation.pathOfRun);
  if (!tool) {
    return {Level::unknown, kSubject, "whether it replies is not known without ping"};
  }
  const Answer answer = ask({*tool, "-c", "1", workstation.address}, workstation.pathOfRun, kLimit);
  if (const auto timeMs = replyTime(answer.text)) {
    return {Level::well, kSubject,
            fmt::format("{} answers: ping {:.3g} ms", named(workstation), *timeMs)};
  }
  const bool isRefused = !answer.timedOut && answer.status != 1;
  return {Level::look, kSubject,
          isRefused ? fmt::format("{} cannot be pinged: {}", named(workstation), failure(answer))
                    : fmt::format("{} does not answer a ping within {} s: a run would show no "
                                  "latency",
                                  named(workstation), kLimit.count())};
}

/// The statuses of connectTo().
constexpr int kConnected = 0;
constexpr int kNotReached = 1;
constexpr int kRefused = 2;
constexpr int kUnknownName = 3;

/// Connects to the port, and says on standard output why that fails.
int connectTo(const std::string& address) {
  addrinfo hints = {};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (const int error = getaddrinfo(address.c_str(), kPort, &hints, &found); error != 0) {
    std::puts(gai_strerror(error));
    return kUnknownName;
  }
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> places(found, freeaddrinfo);
  int error = 0;
  for (const addrinfo* place = found; place != nullptr; place = place->ai_next) {
    const int connection = socket(place->ai_family, SOCK_STREAM, 0);
    if (connection >= 0 && connect(connection, place->ai_addr, place->ai_addrlen) == 0) {
      close(connection);
      return kConnected;
    }
    error = errno;
    close(connection);
  }
  std::puts(std::strerror(error));
  return error == ECONNREFUSED ? kRefused : kNotReached;
}

Finding tryPort(const Workstation& workstation) {
  constexpr std::chrono::seconds kLimit{2};
  const Answer answer = askFunction([&] { return connectTo(workstation.address); }, kLimit);
  if (answer.succeeded()) {
    return {Level::well, kSubject,
            fmt::format("iperf3 port {} accepts; busy or free: say --try", kPort)};
  }
  if (answer.timedOut) {
    return {Level::mend, kSubject,
            fmt::format("port {} does not accept within {} s: see that its firewall lets TCP {} in",
                        kPort, kLimit.count(), kPort)};
  }
  const std::string reason = firstLine(answer.text);
  if (answer.status == kUnknownName) {
    return {Level::mend, kSubject,
            fmt::format("{} is no name that is known: {}", workstation.address, reason)};
  }
  if (answer.status == kRefused) {
    return {Level::mend, kSubject,
            fmt::format("port {} is refused. Start the server there:", kPort), "iperf3 -s"};
  }
  return {Level::mend, kSubject, fmt::format("port {} cannot be reached: {}", kPort, reason)};
}

/// A test as a run makes it, of a second.
Finding tryTest(const Workstation& workstation) {
  constexpr std::chrono::seconds kLimit{6};
  const Answer answer =
      ask({std::string(kFixedFolder) + "/iperf3", "-c", workstation.address, "-t", "1"},
          workstation.pathOfRun, kLimit);
  if (answer.succeeded()) {
    return {Level::well, kSubject, "a test of one second went through: iperf3 is not busy"};
  }
  if (answer.text.find("the server is busy") != std::string::npos) {
    return {Level::look, kSubject, "it is busy with another test: a run would show no rates now"};
  }
  return {Level::mend, kSubject, fmt::format("a test of one second failed: {}", failure(answer))};
}

}  // namespace

Findings checkServer(const Workstation& workstation) {
  if (workstation.address.empty()) {
    return {
        {Level::unknown, kSubject, "no address is known. Say which:", "connWatch doctor ADDRESS"}};
  }
  if (!isAddress(workstation.address) || workstation.address.size() > kMaxAddressLength) {
    return {
        {Level::mend, kSubject,
         fmt::format("\"{}\" is no address that a run takes: up to {} letters, digits and . : - "
                     "_ %, and no \"-\" at the beginning",
                     firstLine(workstation.address), kMaxAddressLength)}};
  }
  Findings findings;
  if (ConfigurationParameters.doPingTests) {
    findings.push_back(ping(workstation));
  }
  if (ConfigurationParameters.doIperf3Tests) {
    findings.push_back(workstation.isTry ? tryTest(workstation) : tryPort(workstation));
  }
  return findings;
}

}  // namespace watch
