#include "report/page.h"

#include "report/explorer.h"
#include "report/resources.h"
#include "report/sections.h"
#include "report/words.h"
#include "views/words.h"

#include <fmt/format.h>
#include <span>

namespace watch {

namespace {

Html title(const Station& station) {
  const std::vector<std::string> servers = serversOf(station.runs);
  if (servers.empty()) {
    return foreign(station.name);
  }
  const std::string others =
      servers.size() == 1 ? "" : fmt::format(" and {} more", servers.size() - 1);
  return {foreign(station.name),    " ",   el("span", {{"class", "arrow"}}, "→"), " ",
          foreign(servers.front()), others};
}

std::string rate(std::optional<double> promised) {
  return promised ? plain(*promised) : "n/a";
}

std::string promise(const Contract& contract) {
  if (!contract.read && !contract.write) {
    return "";
  }
  return fmt::format(" · contract {} / {} Mbit/s", rate(contract.read), rate(contract.write));
}

/// When, how often, in which zone.
Html subtitle(const Station& station) {
  std::string words = station.line.empty()
                          ? "Tests of which no time is known"
                          : dates(noonOf(station.firstDay()), noonOf(station.lastDay()));
  if (const std::string rhythm = rhythmInWords(station.rhythm); !rhythm.empty()) {
    words += " · " + rhythm;
  }
  words += " · times in " + foreign(zoneName()) + promise(station.contract);
  return el("p", {{"class", "sub"}}, words);
}

Html sections(const Station& station) {
  if (station.line.empty()) {
    return {verdict(station), tiles(station), whatWasTested(station)};
  }
  return {verdict(station),      tiles(station),        hourByHour(station),
          dayByDay(station),     usualDay(station),     outageList(station),
          monthByMonth(station), slowestTests(station), forTheProvider(station),
          whatWasTested(station)};
}

Html one(const Station& station) {
  return {el("header", {},
             {el("p", {{"class", "eyebrow"}}, "Connection report"), el("h1", {}, title(station)),
              subtitle(station)}),
          sections(station)};
}

Html several(std::span<const Station> stations) {
  Html page = {el("header", {},
                  {el("p", {{"class", "eyebrow"}}, "Connection report"),
                   el("h1", {}, fmt::format("{} workstations", stations.size()))}),
               comparison(stations)};
  for (const Station& station : stations) {
    page += el("article", {}, {el("h2", {}, title(station)), subtitle(station), sections(station)});
  }
  return page;
}

Html footer(std::span<const Station> stations, EpochSeconds now) {
  std::string folders;
  for (const Station& station : stations) {
    folders += (folders.empty() ? "" : ", ") + foreign(station.folder);
  }
  return el("footer", {},
            fmt::format("Made by connWatch {} on {}, {}, from {}. One file; nothing is loaded from "
                        "elsewhere.",
                        CONNWATCH_VERSION, weekdayAndDate(now), clockTime(now), folders));
}

/// Nothing may be loaded, and only what is known by its hash may run.
std::string policy() {
  const std::string scripts = hasExplorer() ? fmt::format(" script-src 'sha256-{}' 'sha256-{}';",
                                                          kLibraryHash, kExplorerHash)
                                            : "";
  return fmt::format(
      "default-src 'none'; style-src 'sha256-{}';{} base-uri 'none'; "
      "form-action 'none'",
      kStyleHash, scripts);
}

std::string scripts() {
  return hasExplorer()
             ? fmt::format("<script>{}</script>\n<script>{}</script>\n", kLibrary, kExplorer)
             : "";
}

std::string pageTitle(std::span<const Station> stations) {
  return stations.size() == 1 ? "Connection report: " + foreign(stations.front().name)
                              : fmt::format("Connection report: {} workstations", stations.size());
}

}  // namespace

Html section(const Station& station, const char* title, const Html& content) {
  return el("section", {}, {el(station.heading, {}, title), content});
}

std::string reportPage(std::vector<Station> stations, EpochSeconds now) {
  for (Station& station : stations) {
    station.heading = stations.size() == 1 ? "h2" : "h3";
  }
  const Html content = stations.size() == 1 ? one(stations.front()) : several(stations);
  return fmt::format(fmt::runtime(kPage), fmt::arg("title", Html(pageTitle(stations)).source()),
                     fmt::arg("style", kStyle), fmt::arg("policy", policy()),
                     fmt::arg("scripts", scripts()),
                     fmt::arg("content", Html{content, footer(stations, now)}.source()));
}

}  // namespace watch
