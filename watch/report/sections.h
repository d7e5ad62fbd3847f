// The sections of the page, in its order: a file for each. Where a section has nothing to say, it
// is empty. All but the first two and the last need a run whose time is known.
#pragma once

#include "report/html.h"
#include "report/station.h"

#include <span>

namespace watch {

Html comparison(std::span<const Station> stations);

Html verdict(const Station& station);
Html tiles(const Station& station);
Html hourByHour(const Station& station);
Html dayByDay(const Station& station);
Html usualDay(const Station& station);
Html outageList(const Station& station);
Html monthByMonth(const Station& station);
Html slowestTests(const Station& station);
Html forTheProvider(const Station& station);
Html whatWasTested(const Station& station);

/// A section of that title, which stands in the heading element of the station.
Html section(const Station& station, const char* title, const Html& content);

}  // namespace watch
