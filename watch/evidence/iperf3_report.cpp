#include "evidence/iperf3_report.h"

#include "evidence/text.h"

#include <rapidjson/document.h>
#include <rapidjson/pointer.h>

namespace watch {

namespace {

using rapidjson::Value;

const Value* at(const Value& value, const char* pointer) {
  return rapidjson::Pointer(pointer).Get(value);
}

std::uint32_t countEmptyIntervals(const Value& report) {
  const Value* const intervals = at(report, "/intervals");
  if (intervals == nullptr || !intervals->IsArray()) {
    return 0;
  }
  std::uint32_t count = 0;
  for (const Value& interval : intervals->GetArray()) {
    const Value* const bytes = at(interval, "/sum/bytes");
    count += bytes != nullptr && bytes->IsNumber() && bytes->GetDouble() == 0 ? 1 : 0;
  }
  return count;
}

}  // namespace

std::optional<Iperf3Report> parseIperf3Report(std::string_view text) {
  // RapidJSON would take a NUL for the end.
  if (text.find('\0') != std::string_view::npos) {
    return std::nullopt;
  }
  rapidjson::Document document;
  // Without recursion: the depth of a report is its writer's.
  document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  if (document.HasParseError() || !document.IsObject()) {
    return std::nullopt;
  }
  Iperf3Report report;
  if (const Value* const start = at(document, "/start/timestamp/timesecs");
      start != nullptr && start->IsInt64()) {
    report.start = start->GetInt64();
  }
  if (const Value* const port = at(document, "/start/connected/0/local_port");
      port != nullptr && port->IsUint() && port->GetUint() <= UINT16_MAX) {
    report.clientPort = static_cast<std::uint16_t>(port->GetUint());
  }
  if (const Value* const error = at(document, "/error"); error != nullptr && error->IsString()) {
    report.error = printable({error->GetString(), error->GetStringLength()});
  }
  report.emptyIntervals = countEmptyIntervals(document);
  return report;
}

}  // namespace watch
