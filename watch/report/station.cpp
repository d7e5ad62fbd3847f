#include "report/station.h"

#include "figures/usual.h"

#include <algorithm>
#include <map>
#include <utility>

namespace watch {

namespace {

/// What the contract promises of the first metric that was measured, or what is usual of it.
std::optional<Reference> referenceOf(const std::vector<Run>& runs, const Contract& contract) {
  const std::pair<const Metric*, std::optional<double>> metrics[] = {
      {&kRead, contract.read}, {&kWrite, contract.write}, {&kLatency, std::nullopt}};
  for (const auto& [metric, promised] : metrics) {
    if (const std::optional<double> middle = usual(runs, *metric).middle; middle && *middle > 0) {
      return Reference{metric, promised.value_or(*middle), promised.has_value()};
    }
  }
  return std::nullopt;
}

void addOutages(Station& station) {
  for (const Outage& outage : outages(station.runs)) {
    station.outages.push_back(boundsOf(station.runs, outage));
    station.withoutConnection += outage.end - outage.begin;
    station.longestOutage = std::max(station.longestOutage, outage.end - outage.begin);
  }
}

}  // namespace

Station lookAt(StationRuns runs, const Contract& contract) {
  Station station;
  station.name = std::move(runs.name);
  station.folder = std::move(runs.folder);
  station.files = std::move(runs.files);
  station.runs = std::move(runs.runs);
  station.contract = contract;
  station.counts = countRuns(station.runs);
  station.rhythm = rhythmOf(std::span<const Run>(station.runs));
  for (const Gap& gap : gaps(station.runs)) {
    station.missing += gap.missing;
  }
  station.reference = referenceOf(station.runs, contract);
  station.line = timeline(station.runs, station.reference);
  if (!station.line.empty()) {
    station.all = stretches(station.line, [](const Placed&) { return 0; }).front();
  }
  station.days = stretches(station.line, dayKey);
  station.months = stretches(station.line, monthKey);
  station.hours = stretches(station.line, hourKey);
  station.hoursOfWeek = stretches(station.line, hourOfWeekKey);
  addOutages(station);
  return station;
}

std::vector<std::string> serversOf(const std::vector<Run>& runs) {
  std::map<std::string, std::size_t> counts;
  for (const Run& run : runs) {
    if (!run.server.empty()) {
      ++counts[run.server];
    }
  }
  std::vector<std::string> servers;
  for (const auto& [server, count] : counts) {
    servers.push_back(server);
  }
  std::ranges::stable_sort(servers, [&counts](const std::string& one, const std::string& other) {
    return counts[one] > counts[other];
  });
  return servers;
}

}  // namespace watch
