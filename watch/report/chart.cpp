#include "report/chart.h"

#include "report/words.h"

#include <cmath>
#include <fmt/format.h>
#include <span>

namespace watch {

namespace {

std::string viewBox() {
  return fmt::format("0 0 {:.0f} {:.0f}", kWidth, kHeight);
}

/// Calls `take` for each part of `series` without a gap.
template <class Take>
void eachPart(const Series& series, Take take) {
  std::vector<Point> part;
  for (const std::optional<Point>& point : series) {
    if (point) {
      part.push_back(*point);
    } else if (!part.empty()) {
      take(part);
      part.clear();
    }
  }
  if (!part.empty()) {
    take(part);
  }
}

void addLine(std::span<const Point> part, const Scale& scale, Path& line) {
  line.moveTo(part.front().x, scale.y(part.front().middle));
  for (const Point& point : part.subspan(1)) {
    line.lineTo(point.x, scale.y(point.middle));
  }
}

/// A line without a length has round ends.
void addDots(std::span<const Point> part, const Scale& scale, Path& dots) {
  for (const Point& point : part) {
    const double y = scale.y(point.middle);
    dots.moveTo(point.x, y).lineTo(point.x, y);
  }
}

Html scaleLines(const Scale& scale) {
  Path lines;
  for (double value = scale.step; value < scale.top * 1.001; value += scale.step) {
    lines.moveTo(0, scale.y(value)).lineTo(kWidth, scale.y(value));
  }
  return lines.draw("grid");
}

Html scaleLabels(const Scale& scale) {
  Html labels;
  for (double value = 0; value < scale.top * 1.001; value += scale.step) {
    labels += rowLabel(1 - value / scale.top, plain(value));
  }
  return labels;
}

Html tickLines(const std::vector<Tick>& ticks) {
  Path lines;
  for (const Tick& tick : ticks) {
    if (tick.share > 0) {
      lines.moveTo(kWidth * tick.share, 0).lineTo(kWidth * tick.share, kHeight);
    }
  }
  return lines.draw("grid");
}

Html tickLabels(const std::vector<Tick>& ticks) {
  Html labels;
  for (const Tick& tick : ticks) {
    labels += el("text",
                 {{"class", tick.isMinor ? "x minor" : "x"},
                  {"x", percentage(tick.share)},
                  {"y", "100%"},
                  {"dx", "2"},
                  {"dy", "1.35em"}},
                 tick.label);
  }
  return labels;
}

}  // namespace

std::string percentage(double share) {
  constexpr double kPercent = 100;
  std::string text = fmt::format("{:.2f}", kPercent * share);
  text.erase(text.find_last_not_of('0') + 1);
  text.erase(text.find_last_not_of('.') + 1);
  return text + "%";
}

Html rowLabel(double share, const std::string& text) {
  return el("text",
            {{"class", "y"}, {"x", "0"}, {"y", percentage(share)}, {"dx", "-8"}, {"dy", ".32em"}},
            text);
}

Path& Path::moveTo(double x, double y) {
  text_ += fmt::format("M{:.0f} {:.0f}", x, y);
  return *this;
}

Path& Path::lineTo(double x, double y) {
  text_ += fmt::format("L{:.0f} {:.0f}", x, y);
  return *this;
}

Path& Path::close() {
  text_ += 'z';
  return *this;
}

Path& Path::addBox(double x, double y, double width, double height) {
  text_ += fmt::format("M{:.0f} {:.0f}h{:.0f}v{:.0f}h-{:.0f}z", x, y, width, height, width);
  return *this;
}

Html Path::draw(const char* name) const {
  return isEmpty() ? Html() : shape("path", {{"class", name}, {"d", text_}});
}

Scale scaleFor(double most) {
  constexpr double kSteps = 3;
  constexpr double kRound[] = {1, 2, 5};
  if (!(most > 0)) {
    return {1, 1};
  }
  const double least = most / kSteps;
  const double power = std::pow(10, std::floor(std::log10(least)));
  double step = 10 * power;
  for (const double round : kRound) {
    if (round * power >= least) {
      step = round * power;
      break;
    }
  }
  return {std::ceil(most / step) * step, step};
}

Html drawLine(const Series& series, const Scale& scale) {
  Path line;
  Path dots;
  constexpr std::size_t kFew = 60;
  eachPart(series, [&](std::span<const Point> part) {
    addLine(part, scale, line);
    if (part.size() == 1 || series.size() <= kFew) {
      addDots(part, scale, dots);
    }
  });
  return {line.draw("line"), dots.draw("dots")};
}

Html drawBand(const Series& series, const Scale& scale, double Point::*low, double Point::*high,
              const char* name) {
  Path band;
  eachPart(series, [&](std::span<const Point> part) {
    band.moveTo(part.front().x, scale.y(part.front().*high));
    for (const Point& point : part.subspan(1)) {
      band.lineTo(point.x, scale.y(point.*high));
    }
    for (std::size_t i = part.size(); i-- > 0;) {
      band.lineTo(part[i].x, scale.y(part[i].*low));
    }
    band.close();
  });
  return band.draw(name);
}

Html draw(const Chart& chart) {
  const Html lines = chart.scale ? scaleLines(*chart.scale) : Html();
  const Html area = el("svg",
                       {{"width", "100%"},
                        {"height", "100%"},
                        {"viewBox", viewBox()},
                        {"preserveAspectRatio", "none"}},
                       {lines, tickLines(chart.ticks), chart.drawing});
  return el("svg",
            {{"class", chart.style},
             {"height", chart.height ? fmt::format("{}", *chart.height) : ""},
             {"role", chart.label.empty() ? "" : "img"},
             {"aria-label", chart.label},
             {"aria-hidden", chart.label.empty() ? "true" : ""}},
            {area, chart.scale ? scaleLabels(*chart.scale) : Html(),
             chart.hasTickLabels ? tickLabels(chart.ticks) : Html(), chart.labels});
}

}  // namespace watch
