// The explorer: takes the place of the pictures of "day by day". Three rows over one time, by day when
// it is long, by test when it is short. All times are those of the workstation's clock.
"use strict";
(() => {
  const HOUR = 3600;
  const DAY = 24 * HOUR;
  // So many tests are drawn one by one, and with dots.
  const MOST_TESTS = 3000;
  const MOST_DOTS = 400;
  const LEAST_SPAN = 3 * HOUR;
  const ROWS = [
    {key: "read", title: "Download", unit: "Mbit/s", colour: "--read", promised: "promisedRead"},
    {key: "write", title: "Upload", unit: "Mbit/s", colour: "--write", promised: "promisedWrite"},
    {key: "latency", title: "Latency", unit: "ms", colour: "--latency"},
  ];
  const MARKS = ["miss", "part", "srv", "lost"];
  const WEEKDAYS = ["Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"];
  const MONTHS = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"];

  const element = (name, style, text = "") => {
    const made = document.createElement(name);
    made.className = style;
    made.textContent = text;
    return made;
  };
  const pad = (number) => String(number).padStart(2, "0");
  const variable = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

  // As many digits as tell something.
  const figure = (value) =>
    value.toFixed(value >= 10000 ? 0 : value >= 10 || value === 0 ? 1 : value >= 1 ? 2 : 3);

  // The value of the sorted `values` below which `share` of them lie.
  const quantile = (values, share) => {
    const place = share * (values.length - 1);
    const below = Math.floor(place);
    const above = Math.min(below + 1, values.length - 1);
    return values[below] + (place - below) * (values[above] - values[below]);
  };

  // The first place in the sorted `values` that is not before `value`.
  const lowerBound = (values, value) => {
    let low = 0;
    let high = values.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (values[middle] < value) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    return low;
  };

  const nearest = (values, value) => {
    const above = Math.min(lowerBound(values, value), values.length - 1);
    const below = Math.max(above - 1, 0);
    return value - values[below] < values[above] - value ? below : above;
  };

  // What the page knows of the runs, and of their days.
  class Runs {
    constructor(data) {
      this.rhythm = data.rhythm;
      this.offsets = data.offsets;
      this.figures = data;
      let time = 0;
      this.times = Float64Array.from(data.times, (step) => (time += step));
      this.troubles = new Map(data.troubles.map(([place, mark, words]) => [place, {mark, words}]));
      this.days = this.#groupByDay();
    }

    // The clock of the workstation, as seconds of a clock without zone.
    local(time) {
      let offset = this.offsets[0][1];
      for (const [from, seconds] of this.offsets) {
        if (from > time) {
          break;
        }
        offset = seconds;
      }
      return time + offset;
    }

    date(time) {
      return new Date(this.local(time) * 1000);
    }

    #groupByDay() {
      const days = [];
      this.times.forEach((time, place) => {
        const key = Math.floor(this.local(time) / DAY);
        if (days.length === 0 || days.at(-1).key !== key) {
          days.push({key, first: place, last: place});
        }
        days.at(-1).last = place;
      });
      for (const day of days) {
        day.noon = this.times[day.first] + (day.key + 0.5) * DAY - this.local(this.times[day.first]);
        for (const {key} of ROWS) {
          day[key] = this.#spread(this.figures[key].slice(day.first, day.last + 1));
        }
      }
      return days;
    }

    #spread(figures) {
      const values = figures.filter((value) => value !== null).sort((one, other) => one - other);
      return values.length === 0 ? null : [0.05, 0.5, 0.95].map((share) => quantile(values, share));
    }
  }

  // The rows of a picture: when, and between which values. Where something is missing, nothing.
  const rowsOfDays = (runs, key) => {
    const rows = [];
    runs.days.forEach((day, place) => {
      if (place > 0 && day.key > runs.days[place - 1].key + 1) {
        rows.push([day.noon - DAY, [null, null, null]]);
      }
      rows.push([day.noon, day[key] ?? [null, null, null]]);
    });
    return rows;
  };

  const rowsOfTests = (runs, key, first, last) => {
    const rows = [];
    for (let place = first; place < last; ++place) {
      const time = runs.times[place];
      if (place > first && runs.rhythm > 0 && time - runs.times[place - 1] > 1.5 * runs.rhythm) {
        rows.push([time - runs.rhythm / 2, [null, null, null]]);
      }
      const value = runs.figures[key][place];
      rows.push([time, [value, value, value]]);
    }
    return rows;
  };

  const highest = (rows, from, to) => {
    let most = 0;
    for (const [time, [, , high]] of rows) {
      if (time >= from && time <= to && high > most) {
        most = high;
      }
    }
    return most;
  };

  const roundTop = (most) => {
    const step = 10 ** Math.floor(Math.log10(most / 3 || 1));
    const round = [1, 2, 5, 10].map((times) => times * step).find((each) => each * 3 >= most);
    return Math.ceil(most / round) * round;
  };

  // Where labels of time stand, and what they say.
  class Ticks {
    constructor(runs) {
      this.runs = runs;
    }

    between(from, to, width) {
      const most = Math.max(2, Math.floor(width / 65));
      const hours = [1, 2, 3, 6, 12].find((each) => (to - from) / HOUR / each <= most);
      if (hours) {
        return this.#every(from, to, hours * HOUR, (date) =>
          date.getUTCHours() === 0 ? this.#day(date) : `${pad(date.getUTCHours())}:00`);
      }
      const days = [1, 2, 7, 14].find((each) => (to - from) / DAY / each <= most);
      if (days) {
        return this.#every(from, to, days * DAY, (date) => this.#day(date));
      }
      const months = [1, 2, 3, 6, 12].find((each) => (to - from) / DAY / 30 / each <= most) ?? 12;
      return this.#months(from, to, months);
    }

    #day(date) {
      return `${date.getUTCDate()} ${MONTHS[date.getUTCMonth()]}`;
    }

    #every(from, to, step, label) {
      const ticks = [];
      const shift = this.runs.local(from) - from;
      for (let at = Math.ceil((from + shift) / step) * step; at - shift <= to; at += step) {
        const time = this.#moment(at, shift);
        ticks.push({v: time, label: label(new Date(at * 1000))});
      }
      return ticks;
    }

    // When the clock shows `local`; `shift` is its distance from UTC nearby.
    #moment(local, shift) {
      return local - (this.runs.local(local - shift) - (local - shift));
    }

    #months(from, to, step) {
      const ticks = [];
      const begin = this.runs.date(from);
      const shift = this.runs.local(from) - from;
      for (let month = 0; ; month += step) {
        const first = Math.floor(begin.getUTCMonth() / step) * step + month;
        const date = new Date(Date.UTC(begin.getUTCFullYear(), first, 1));
        const time = this.#moment(date.getTime() / 1000, shift);
        if (time > to) {
          return ticks;
        }
        const isYear = date.getUTCMonth() === 0;
        if (time >= from) {
          ticks.push({v: time, label: isYear ? `${date.getUTCFullYear()}` : MONTHS[date.getUTCMonth()]});
        }
      }
    }
  }

  class Explorer {
    constructor(place) {
      this.place = place;
      this.runs = new Runs(JSON.parse(place.querySelector("script").textContent));
      this.ticks = new Ticks(this.runs);
      this.first = this.runs.times[0] - HOUR;
      this.last = this.runs.times.at(-1) + HOUR;
      this.byDay = Object.fromEntries(ROWS.map(({key}) => [key, rowsOfDays(this.runs, key)]));
      this.rows = ROWS.filter(({key}) => this.runs.figures[key].some((value) => value !== null));
      place.hidden = false;
      place.tabIndex = 0;
      place.setAttribute("role", "group");
      place.setAttribute("aria-label", "Explorer of the tests. Arrow keys move, plus and minus zoom, "
        + "Home shows all. The same figures stand in the table below.");
      this.#build();
      this.show(this.first, this.last);
      place.nextElementSibling.classList.add("replaced");
    }

    #build() {
      this.place.append(this.#buttons());
      this.readout = element("p", "readout");
      this.place.append(this.readout);
      this.plots = element("div", "rows-of-explorer");
      this.cursor = element("div", "cursor");
      this.plots.append(this.cursor);
      this.place.append(this.plots);
      this.graphs = this.rows.map((row, place) => this.#graph(row, place === this.rows.length - 1));
      this.place.append(element("p", "hint", "Drag to look closer, click twice to see all again. "
        + "Arrow keys move, + and − zoom."));
      this.plots.addEventListener("pointermove", (event) => this.#point(event));
      this.plots.addEventListener("pointerdown", (event) => this.#point(event));
      this.plots.addEventListener("pointerleave", () => this.#unpoint());
      this.place.addEventListener("keydown", (event) => this.#key(event));
      matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.#recolour());
    }

    #buttons() {
      const bar = element("div", "buttons");
      const add = (text, label, act) => {
        const button = element("button", "", text);
        button.type = "button";
        button.setAttribute("aria-label", label);
        button.addEventListener("click", act);
        bar.append(button);
      };
      add("All", "Show all", () => this.show(this.first, this.last));
      for (const [text, days] of [["3 months", 91], ["Month", 30], ["Week", 7], ["Day", 1]]) {
        if (days * DAY < this.last - this.first) {
          add(text, `Show a time of: ${text}`, () => this.#span(days * DAY));
        }
      }
      add("‹", "Earlier", () => this.#move(-0.5));
      add("›", "Later", () => this.#move(0.5));
      this.range = element("span", "range");
      this.range.setAttribute("aria-live", "polite");
      bar.append(this.range);
      return bar;
    }

    #graph(row, isLast) {
      const caption = element("p", "caption");
      const dot = element("i", "dot");
      caption.classList.add(`c-${row.key}`);
      caption.append(dot, row.title, element("small", "", row.unit));
      const promised = this.runs.figures[row.promised];
      if (promised) {
        caption.append(element("small", "promise", `contract ${promised}`));
      }
      const box = element("div", isLast ? "graph last" : "graph");
      this.plots.append(caption, box);
      return new Dygraph(box, this.byDay[row.key], {
        ...this.#colours(row),
        customBars: true,
        labels: ["time", row.title],
        legend: "never",
        highlightCircleSize: 0,
        strokeWidth: 1.6,
        fillAlpha: 0.19,
        pointSize: 2,
        rightGap: 1,
        xRangePad: 0,
        axes: {
          x: {drawAxis: isLast, ticker: (from, to, width) => this.ticks.between(from, to, width)},
          y: {axisLabelWidth: 40, pixelsPerLabel: 36, includeZero: true},
        },
        interactionModel: {
          ...Dygraph.defaultInteractionModel,
          dblclick: () => this.show(this.first, this.last),
        },
        underlayCallback: (context, area, graph) => this.#underlay(context, area, graph, promised),
        drawCallback: (graph, isInitial) => isInitial || this.#follow(graph),
      });
    }

    #colours(row) {
      return {
        colors: [variable(row.colour)],
        gridLineColor: variable("--grid"),
        axisLineColor: variable("--rule"),
      };
    }

    #recolour() {
      this.graphs.forEach((graph, place) => graph.updateOptions(this.#colours(this.rows[place])));
    }

    // Behind the line: when nothing was measured, and what the contract says.
    #underlay(context, area, graph, promised) {
      const [from, to] = graph.xAxisRange();
      context.save();
      for (const mark of MARKS) {
        context.fillStyle = variable(`--${mark}`);
        for (const [begin, end] of this.#marked(mark, from, to)) {
          const left = Math.max(area.x, graph.toDomXCoord(begin));
          const right = Math.min(area.x + area.w, graph.toDomXCoord(end));
          const isGap = mark === "miss";
          const height = isGap ? area.h : 5;
          context.globalAlpha = isGap ? 0.6 : 1;
          context.fillRect(left, area.y + area.h - height, Math.max(right - left, 2), height);
        }
      }
      context.globalAlpha = 1;
      if (promised) {
        context.strokeStyle = variable("--faint");
        context.setLineDash([5, 4]);
        context.beginPath();
        context.moveTo(area.x, graph.toDomYCoord(promised));
        context.lineTo(area.x + area.w, graph.toDomYCoord(promised));
        context.stroke();
      }
      context.restore();
    }

    // From when to when there is such a mark.
    #marked(mark, from, to) {
      const {times, troubles, rhythm} = this.runs;
      const first = lowerBound(times, from);
      const last = lowerBound(times, to);
      const found = [];
      for (let place = Math.max(first, 1); mark === "miss" && place <= last && rhythm > 0; ++place) {
        const [before, after] = [times[place - 1], times[place]];
        if (after - before > 1.5 * rhythm) {
          found.push([before + rhythm / 2, after - rhythm / 2]);
        }
      }
      for (const [place, trouble] of troubles) {
        if (trouble.mark === mark && place >= first && place < last) {
          found.push([times[place], times[place] + rhythm]);
        }
      }
      return found;
    }

    // A graph has been zoomed or moved by itself: the others follow.
    #follow(graph) {
      const [from, to] = graph.xAxisRange();
      const isOurs = Math.abs(from - this.from) + Math.abs(to - this.to) < 1
        && graph.yAxisRange()[0] === 0;
      if (this.isShowing || isOurs) {
        return;
      }
      cancelAnimationFrame(this.frame);
      this.frame = requestAnimationFrame(() => this.show(from, to));
    }

    show(from, to) {
      const span = Math.min(Math.max(to - from, LEAST_SPAN), this.last - this.first);
      this.from = Math.min(Math.max(from, this.first), this.last - span);
      this.to = this.from + span;
      const first = Math.max(lowerBound(this.runs.times, this.from) - 1, 0);
      const last = Math.min(lowerBound(this.runs.times, this.to) + 1, this.runs.times.length);
      this.isByTest = last - first <= MOST_TESTS
        && (span < 100 * DAY || this.runs.days.length * 2 > this.runs.times.length);
      this.isShowing = true;
      this.graphs.forEach((graph, place) => this.#update(graph, this.rows[place], first, last));
      this.isShowing = false;
      this.range.textContent = `${this.#dates()} · `
        + (this.isByTest ? "every test" : "by day: the middle and nine of ten");
      this.#unpoint();
    }

    #update(graph, row, first, last) {
      const file = this.isByTest ? rowsOfTests(this.runs, row.key, first, last) : this.byDay[row.key];
      const promised = this.runs.figures[row.promised] ?? 0;
      const most = Math.max(highest(file, this.from, this.to), promised);
      graph.updateOptions({
        file,
        dateWindow: [this.from, this.to],
        valueRange: [0, roundTop(most * 1.02 || 1)],
        drawPoints: this.isByTest && last - first <= MOST_DOTS,
      });
    }

    #span(seconds) {
      const middle = (this.from + this.to) / 2;
      this.show(middle - seconds / 2, middle + seconds / 2);
    }

    #move(share) {
      const step = share * (this.to - this.from);
      this.show(this.from + step, this.to + step);
    }

    #key(event) {
      const acts = {
        ArrowLeft: () => this.#move(-0.2),
        ArrowRight: () => this.#move(0.2),
        "+": () => this.#span((this.to - this.from) / 2),
        "-": () => this.#span((this.to - this.from) * 2),
        Home: () => this.show(this.first, this.last),
      };
      if (acts[event.key] && !event.ctrlKey && !event.metaKey && !event.altKey) {
        event.preventDefault();
        acts[event.key]();
      }
    }

    // Says what was at the pointer.
    #point(event) {
      const area = this.graphs[0].getArea();
      const left = event.clientX - this.plots.getBoundingClientRect().left;
      const time = this.from + (left - area.x) / area.w * (this.to - this.from);
      if (left < area.x || left > area.x + area.w) {
        this.#unpoint();
        return;
      }
      const at = this.isByTest ? this.#pointAtTest(time) : this.#pointAtDay(time);
      this.cursor.style.left = `${this.graphs[0].toDomXCoord(at)}px`;
      this.cursor.style.display = at < this.from || at > this.to ? "none" : "block";
    }

    #unpoint() {
      this.cursor.style.display = "none";
      this.readout.textContent = "";
    }

    #pointAtTest(time) {
      const place = nearest(this.runs.times, time);
      const at = this.runs.times[place];
      const date = this.runs.date(at);
      const parts = [`${this.#dayOf(date)}, ${pad(date.getUTCHours())}:${pad(date.getUTCMinutes())}`];
      for (const row of this.rows) {
        const value = this.runs.figures[row.key][place];
        parts.push(`${row.title.toLowerCase()} ${value === null ? "n/a" : `${figure(value)} ${row.unit}`}`);
      }
      const trouble = this.runs.troubles.get(place);
      this.readout.textContent = parts.concat(trouble ? [trouble.words] : []).join(" · ");
      return at;
    }

    #pointAtDay(time) {
      const noons = this.runs.days.map((day) => day.noon);
      const day = this.runs.days[nearest(noons, time)];
      const parts = [this.#dayOf(this.runs.date(day.noon)), `${day.last - day.first + 1} tests`];
      for (const row of this.rows) {
        const spread = day[row.key];
        const [low, middle, high] = (spread ?? []).map(figure);
        parts.push(`${row.title.toLowerCase()} `
          + (spread ? `${middle} ${row.unit} (${low}–${high})` : "n/a"));
      }
      this.readout.textContent = parts.join(" · ");
      return day.noon;
    }

    #dayOf(date) {
      return `${WEEKDAYS[date.getUTCDay()]} ${date.getUTCDate()} ${MONTHS[date.getUTCMonth()]}`;
    }

    // The days that are shown, of those that have tests.
    #dates() {
      const ends = [Math.max(this.from, this.runs.times[0]), Math.min(this.to, this.runs.times.at(-1))];
      const names = ends.map((time) => {
        const date = this.runs.date(time);
        return `${date.getUTCDate()} ${MONTHS[date.getUTCMonth()]} ${date.getUTCFullYear()}`;
      });
      return names[0] === names[1] ? names[0] : names.join(" – ");
    }
  }

  // It measures with a style that the page's policy refuses, and is not shown.
  Dygraph.PLUGINS = Dygraph.PLUGINS.filter((plugin) => plugin !== Dygraph.Plugins.Legend);
  // The page is painted first, with its pictures.
  const start = () => document.querySelectorAll(".explorer").forEach((place) => new Explorer(place));
  requestAnimationFrame(() => setTimeout(start));
})();
