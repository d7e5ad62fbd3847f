// The period hour by hour: a column is a day and a row an hour of it, or for a few weeks the other
// way round.
#include "report/marks.h"
#include "report/sections.h"
#include "report/time_axis.h"
#include "report/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <vector>

namespace watch {

namespace {

constexpr std::int64_t kHours = 24;
/// Up to so many days, each has a row.
constexpr std::int64_t kMostRows = 31;
/// Up to so many, all stand in one picture, else those of each year.
constexpr std::int64_t kMostColumns = 400;

/// How many hours a box holds: as many as a run is due in.
std::int64_t hoursOfBox(const Rhythm& rhythm) {
  for (const std::int64_t hours : {1, 2, 3, 4, 6, 8, 12}) {
    if (rhythm.seconds <= hours * kHourSeconds + kHourSeconds / 4) {
      return hours;
    }
  }
  return kHours;
}

/// Whether the clock has shown that hour: it leaves one out when summer time begins.
bool hasBeen(std::int64_t day, std::int64_t hour) {
  const LocalTime local{day * kDaySeconds + hour * kHourSeconds};
  return localTime(moments(local).first) == local;
}

/// A box of the picture: in the day and from that hour on.
struct Box {
  std::int64_t day;
  std::int64_t hour;
  Mark mark;
};

class Boxes {
 public:
  explicit Boxes(const Station& station) : station_(station), hours_(hoursOfBox(station.rhythm)) {
    const std::int64_t boxesADay = kHours / hours_;
    found_ = stretches(station.line, [this, boxesADay](const Placed& placed) {
      return placed.day * boxesADay + placed.hour / hours_;
    });
  }

  std::int64_t hours() const { return hours_; }

  /// Those of the days from `first` on that lie between the first and the last run.
  std::vector<Box> from(std::int64_t first, std::int64_t days) const {
    const std::int64_t boxesADay = kHours / hours_;
    std::vector<Box> boxes;
    auto next = found_.begin();
    for (std::int64_t key = first * boxesADay; key < (first + days) * boxesADay; ++key) {
      next = std::find_if(next, found_.end(), [key](const Stretch& box) { return box.key >= key; });
      if (next == found_.end() || key < found_.front().key) {
        continue;
      }
      const std::int64_t day = dayNumber({key * hours_ * kHourSeconds});
      const std::int64_t hour = key * hours_ - day * kHours;
      if (next->key == key) {
        boxes.push_back({day, hour, markOf(*next, station_.reference)});
      } else if (hasBeen(day, hour)) {
        boxes.push_back({day, hour, Mark::noTest});
      }
    }
    return boxes;
  }

 private:
  const Station& station_;
  std::int64_t hours_;
  std::vector<Stretch> found_;
};

/// Adds boxes that stand together and have one mark as one.
void addColumns(const std::vector<Box>& boxes, const TimeAxis& axis, std::int64_t hours,
                MarkedBoxes& drawn) {
  constexpr double kHour = kHeight / kHours;
  for (std::size_t i = 0; i < boxes.size();) {
    std::size_t end = i + 1;
    while (end < boxes.size() && boxes[end].day == boxes[i].day &&
           boxes[end].mark == boxes[i].mark && boxes[end].hour == boxes[end - 1].hour + hours) {
      ++end;
    }
    const double left = axis.x(static_cast<double>(boxes[i].day));
    const double right = axis.x(static_cast<double>(boxes[i].day + 1));
    drawn.add(boxes[i].mark, std::round(left), kHour * static_cast<double>(boxes[i].hour),
              std::round(right) - std::round(left),
              kHour * static_cast<double>((end - i) * static_cast<std::size_t>(hours)));
    i = end;
  }
}

Html hourLabels() {
  Html labels;
  for (const int hour : {0, 6, 12, 18}) {
    labels += rowLabel((hour + 0.5) / kHours, fmt::format("{}", hour));
  }
  return labels;
}

std::string label(const Station& station, const TimeAxis& axis) {
  return fmt::format(
             "How the tests were from {} to {}, a box for each hour. The figures are in the "
             "legend and in the tables below.",
             fullDate(axis.firstDay), fullDate(axis.firstDay + axis.days - 1)) +
         (station.reference ? "" : " Nothing was measured.");
}

Html columns(const Station& station, const Boxes& boxes, const TimeAxis& axis) {
  const bool isOfDays = boxes.hours() == kHours;
  MarkedBoxes drawn;
  addColumns(boxes.from(axis.firstDay, axis.days), axis, boxes.hours(), drawn);
  return el("div", {{"class", "plot"}},
            draw({label(station, axis),
                  isOfDays ? "heat low" : "heat",
                  {},
                  axis.ticks(),
                  true,
                  drawn.draw(),
                  isOfDays ? Html() : hourLabels()}));
}

/// A picture for each calendar year.
Html years(const Station& station, const Boxes& boxes) {
  Html pictures;
  std::int64_t first = station.firstDrawnDay();
  while (first <= station.lastDay()) {
    Calendar next;
    next.year = calendar({first * kDaySeconds}).year + 1;
    next.day = 1;
    const std::int64_t end = dayNumber(fromCalendar(next));
    Calendar begin = next;
    --begin.year;
    const std::int64_t newYear = dayNumber(fromCalendar(begin));
    pictures += el("p", {{"class", "year"}}, fmt::format("{}", begin.year));
    pictures += columns(station, boxes, {newYear, end - newYear});
    first = end;
  }
  return pictures;
}

Html dayLabels(const TimeAxis& axis) {
  Html labels;
  for (std::int64_t day = 0; day < axis.days; ++day) {
    const double middle = (static_cast<double>(day) + 0.5) / static_cast<double>(axis.days);
    labels += rowLabel(middle, shortDay(axis.firstDay + day));
  }
  return labels;
}

Html rows(const Station& station, const Boxes& boxes, const TimeAxis& axis) {
  constexpr double kHour = kWidth / kHours;
  constexpr std::int64_t kRowHeight = 19;
  const double height = kHeight / static_cast<double>(axis.days);
  MarkedBoxes drawn;
  for (const Box& box : boxes.from(axis.firstDay, axis.days)) {
    drawn.add(box.mark, kHour * static_cast<double>(box.hour) + 12,
              height * static_cast<double>(box.day - axis.firstDay) + height * 0.06,
              kHour * static_cast<double>(boxes.hours()) - 24, height * 0.88);
  }
  return el("div", {{"class", "plot of-days"}},
            draw({label(station, axis),
                  "rows",
                  {},
                  hourTicks(),
                  true,
                  drawn.draw(),
                  dayLabels(axis),
                  axis.days * kRowHeight}));
}

/// A row for each day, where there are few; a day of one box needs none.
bool hasRows(const TimeAxis& axis, const Boxes& boxes) {
  return axis.days <= kMostRows && boxes.hours() < kHours;
}

std::string explanation(const Station& station, const TimeAxis& axis, const Boxes& boxes) {
  const std::string box = boxes.hours() == 1 ? "an hour" : fmt::format("{} hours", boxes.hours());
  const std::string what = boxes.hours() == kHours ? "Each column is a day."
                           : hasRows(axis, boxes)
                               ? fmt::format("Each row is a day, each box {} of it.", box)
                               : fmt::format("Each column is a day, each row {} of it.", box);
  const EpochSeconds rhythm = station.rhythm.seconds;
  const bool isShared = rhythm > 0 && rhythm * 2 < boxes.hours() * kHourSeconds;
  return what + " Quiet colour is good; what jumps out was slow, down or not tested." +
         (isShared ? " One test without connection makes its box dark." : "");
}

Html notDrawn(const Station& station) {
  return station.firstDrawnDay() == station.firstDay()
             ? Html()
             : el("p", {{"class", "say"}},
                  {"What was before ", fullDate(station.firstDrawnDay()),
                   " is counted, and not drawn."});
}

}  // namespace

Html hourByHour(const Station& station) {
  const Boxes boxes(station);
  const TimeAxis axis{station.firstDrawnDay(), station.drawnDays()};
  const Html picture = hasRows(axis, boxes)        ? rows(station, boxes, axis)
                       : axis.days <= kMostColumns ? columns(station, boxes, axis)
                                                   : years(station, boxes);
  return section(station, boxes.hours() == kHours ? "All days" : "Hour by hour",
                 {el("p", {{"class", "say"}}, explanation(station, axis, boxes)), notDrawn(station),
                  picture, legend(station)});
}

}  // namespace watch
