#include "report/marks.h"

#include "report/words.h"

#include <fmt/format.h>

namespace watch {

namespace {

constexpr const char* kColours[kMarks] = {"q5",   "q4",  "q3",   "q2",  "q1",
                                          "part", "srv", "lost", "miss"};
/// A test that is missing is below what was measured, and no connection above all.
constexpr Mark kByWeight[kMarks] = {Mark::noTest, Mark::good,     Mark::fair,
                                    Mark::slow,   Mark::slower,   Mark::slowest,
                                    Mark::partly, Mark::noServer, Mark::noConnection};

std::size_t place(Mark mark) {
  return static_cast<std::size_t>(mark);
}

std::string percentOf(std::size_t place) {
  return fmt::format("{:.0f}", 100 * kShares.at(place));
}

/// Of rates in percent; a latency is clearer in milliseconds.
std::string rangeOf(std::size_t place, const Reference& reference) {
  const auto border = [&reference](std::size_t at) {
    return reference.metric->moreIsBetter
               ? percentOf(at)
               : figure(*reference.metric, reference.figure(kShares.at(at)));
  };
  const char* const unit = reference.metric->moreIsBetter ? "%" : reference.metric->unit;
  if (place == 0) {
    return fmt::format("{} {} {}", border(0), unit,
                       reference.metric->moreIsBetter ? "and more" : "and less");
  }
  if (place == kShares.size()) {
    return fmt::format("{} {} {}", reference.metric->moreIsBetter ? "below" : "above",
                       border(place - 1), unit);
  }
  return reference.metric->moreIsBetter
             ? fmt::format("{}–{} %", border(place), border(place - 1))
             : fmt::format("{}–{} {}", border(place - 1), border(place), unit);
}

Html item(Mark mark, const std::string& name, std::size_t count) {
  return el("li", {},
            {el("i", {{"class", std::string("key ") + colour(mark)}}), name, " ",
             el("b", {}, grouped(count))});
}

std::string legendTitle(const Reference& reference) {
  return fmt::format("{}, {} {}", title(*reference.metric),
                     reference.metric->moreIsBetter ? "of the" : "beside the",
                     reference.isOfContract
                         ? fmt::format("contract’s {} Mbit/s", plain(reference.value))
                         : "usual " + figureWithUnit(*reference.metric, reference.value));
}

}  // namespace

const char* colour(Mark mark) {
  return kColours[place(mark)];
}

Html legend(const Station& station) {
  const auto& counts = station.all.marks;
  Html items;
  if (station.reference) {
    items += el("li", {{"class", "title"}}, legendTitle(*station.reference));
    for (std::size_t i = 0; i <= kShares.size(); ++i) {
      items += item(static_cast<Mark>(i), rangeOf(i, *station.reference), counts.at(i));
    }
  }
  constexpr std::pair<Mark, const char*> kOthers[] = {{Mark::noConnection, "no connection"},
                                                      {Mark::noServer, "test server busy or off"},
                                                      {Mark::partly, "not measured in full"},
                                                      {Mark::noTest, "no test"}};
  for (const auto& [mark, name] : kOthers) {
    if (counts.at(place(mark)) > 0) {
      items += item(mark, name, counts.at(place(mark)));
    }
  }
  return el("ul", {{"class", "legend"}}, items);
}

void MarkedBoxes::add(Mark mark, double x, double y, double width, double height) {
  paths_.at(place(mark)).addBox(x, y, width, height);
}

Html MarkedBoxes::draw() const {
  Html boxes;
  for (const Mark mark : kByWeight) {
    boxes += paths_.at(place(mark)).draw(colour(mark));
  }
  return boxes;
}

Html bar(const Stretch& stretch) {
  const auto all = static_cast<double>(stretch.runs() + stretch.of(Mark::noTest));
  MarkedBoxes boxes;
  double x = 0;
  for (std::size_t i = 0; i < kMarks; ++i) {
    const double width = kWidth * static_cast<double>(stretch.marks.at(i)) / all;
    if (width > 0) {
      boxes.add(static_cast<Mark>(i), x, 0, width, kHeight);
      x += width;
    }
  }
  return draw({"", "bar", {}, {}, false, boxes.draw()});
}

}  // namespace watch
