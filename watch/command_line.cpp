#include "command_line.h"

#include "commands.h"
#include "evidence/text.h"
#include "when.h"

#include <chrono>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <string>

namespace watch {

namespace {

constexpr char kAbout[] =
    "Answers from what the runs of connTester have left: how is the line, when "
    "was it bad, and can the figure be trusted.";

EpochSeconds currentTime() {
  using std::chrono::duration_cast;
  using std::chrono::seconds;
  return duration_cast<seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string usageOfTimes(const std::string& text) {
  return "\"" + text +
         "\" is no time: write 2026-11-21, 2026-11-21T05:00, \"20 Nov 20:00\", 05:00, "
         "today, yesterday, or how long ago: 7d, 12h, 30m";
}

/// The arguments as they are given; their meaning is found when all are known.
struct Arguments {
  Selection selection;
  std::string run = "1";
  ExportRequest request;
  Limits limits;
};

void addSelection(CLI::App& command, Selection& selection, bool isRepeatable) {
  CLI::Option* const from =
      command
          .add_option("--from", selection.from, "Log directory to read, by default the user's own")
          ->type_name("DIR");
  if (!isRepeatable) {
    from->expected(1);
  }
  const auto addTime = [&](const char* name, std::optional<EpochSeconds>& moment,
                           EpochSeconds When::*part, const char* about) {
    command
        .add_option_function<std::string>(
            name,
            [&moment, part, name](const std::string& text) {
              const auto when = parseWhen(text, currentTime());
              if (!when) {
                throw CLI::ValidationError(name, usageOfTimes(text));
              }
              moment = (*when).*part;
            },
            about)
        ->type_name("WHEN");
  };
  addTime("--since", selection.since, &When::begin,
          "Only runs from then on: 2026-11-21, 05:00, 7d");
  addTime("--until", selection.until, &When::end, "Only runs up to then");
}

void addExport(CLI::App& command, ExportRequest& request) {
  command.add_option("FORMAT", request.format, "csv, jsonl or sqlite")
      ->required()
      ->type_name("")
      ->check(CLI::IsMember({"csv", "jsonl", "sqlite"}).description(""));
  command
      .add_option_function<std::string>(
          "--output", [&request](const std::string& path) { request.output = path; },
          "Write to this file, replaced in one step")
      ->type_name("FILE");
}

/// Reads "3/6".
void readBad(const std::string& text, Limits& limits) {
  const std::size_t slash = text.find('/');
  const auto bad = wholeNumber<std::size_t>(text.substr(0, slash));
  const auto of =
      slash == std::string::npos ? std::nullopt : wholeNumber<std::size_t>(text.substr(slash + 1));
  if (!bad || !of || *bad == 0 || *bad > *of) {
    throw CLI::ValidationError("--bad", "\"" + text +
                                            "\" is no M/N: write 3/6 for three bad runs "
                                            "of the last six");
  }
  limits.bad = *bad;
  limits.of = *of;
}

/// Reads "50%".
void readBelow(const std::string& text, Limits& limits) {
  const auto number = text.ends_with('%') ? wholeNumber<double>(text.substr(0, text.size() - 1))
                                          : wholeNumber<double>(text);
  if (!number || !(*number > 0 && *number <= 100)) {
    throw CLI::ValidationError("--below",
                               "\"" + text + "\" is no share: write 50% for half of the usual");
  }
  limits.below = *number;
}

void readMaxAge(const std::string& text, Limits& limits) {
  limits.maxAge = parseLength(text);
  if (!limits.maxAge) {
    throw CLI::ValidationError("--max-age",
                               "\"" + text + "\" is no length of time: write 2h, 90m, 1d");
  }
}

void addLimits(CLI::App& command, Limits& limits) {
  const auto add = [&](const char* name, std::optional<double>& limit, const char* unit,
                       const char* about) {
    command
        .add_option_function<double>(
            name, [&limit](double value) { limit = value; }, about)
        ->type_name(unit)
        ->check(CLI::NonNegativeNumber.description(""));
  };
  add("--read", limits.read, "MBIT", "The read rate is bad below this many Mbit/s");
  add("--write", limits.write, "MBIT", "The write rate is bad below this many Mbit/s");
  add("--latency", limits.latency, "MS", "The latency is bad above this many milliseconds");
  const auto addText = [&](const char* name, void (*take)(const std::string&, Limits&),
                           const char* type, const char* about) {
    command
        .add_option_function<std::string>(
            name, [&limits, take](const std::string& text) { take(text, limits); }, about)
        ->type_name(type);
  };
  addText("--bad", readBad, "M/N", "Critical when M of the last N runs are bad, by default 1/1");
  addText("--below", readBelow, "SHARE", "Warn when a rate is below this share of the usual: 50%");
  addText("--max-age", readMaxAge, "LENGTH", "Unknown when the last run is older: 2h");
}

int run(const CLI::App& app, const Arguments& arguments) {
  const EpochSeconds now = currentTime();
  if (app.got_subcommand("list")) {
    return list(arguments.selection, now);
  }
  if (app.got_subcommand("show")) {
    return show(arguments.selection, arguments.run, now);
  }
  if (app.got_subcommand("check")) {
    return check(arguments.selection, arguments.limits, now);
  }
  if (app.got_subcommand("export")) {
    return exportRuns(arguments.selection, arguments.request);
  }
  return summary(arguments.selection);
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  Arguments arguments;
  CLI::App app(kAbout, "connWatch");
  app.set_version_flag("--version", "connWatch " CONNWATCH_VERSION);
  app.require_subcommand(0, 1);
  addSelection(app, arguments.selection, true);
  const auto add = [&](const char* name, const char* about, bool isRepeatable) {
    CLI::App* const command = app.add_subcommand(name, about);
    addSelection(*command, arguments.selection, isRepeatable);
    return command;
  };
  add("list", "The runs, one a line", false);
  add("show", "One run, each figure with its file and line", false)
      ->add_option("RUN", arguments.run, "05:01, \"20 Nov 05:01\", or 2 for the last but one")
      ->type_name("");
  add("summary", "The usual figures, by day and hour, and outages (the default)", true);
  addLimits(*add("check", "A verdict for scripts and monitoring", false), arguments.limits);
  addExport(*add("export", "Every run, for other programs", false), arguments.request);

  // A plugin that can't do what it was asked for is "unknown".
  const auto failed = [&] {
    return app.got_subcommand("check") ? static_cast<int>(Verdict::unknown) : kUsageStatus;
  };
  try {
    app.parse(argc, argv);
    return run(app, arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      return app.exit(error);
    }
    fmt::print(stderr, "connWatch: {}\n  See connWatch --help\n", error.what());
    return failed();
  } catch (const std::exception& error) {
    fmt::print(stderr, "connWatch: {}\n", error.what());
    return failed();
  }
}

}  // namespace watch
