#include "command_line.h"

#include "commands.h"
#include "doctor/doctor.h"
#include "evidence/text.h"
#include "guard/run.h"
#include "views/output.h"
#include "when.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fcntl.h>
#include <fmt/format.h>
#include <functional>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace watch {

namespace {

constexpr char kAbout[] =
    "How is the line, when was it bad, and can the figure be trusted? Answers from\n"
    "what the runs of connTester have left.\n";

constexpr char kTimes[] =
    "WHEN is 2026-11-21, 2026-11-21T05:00, \"20 Nov 20:00\", 05:00, today, yesterday,\n"
    "or how long ago: 7d, 12h, 30m.";

constexpr char kListMarks[] =
    "\nIn the list, ~ marks a time that is not certain, ? a run of which the files\n"
    "leave something open (show says what), and * a rate of a test that was cut.";

constexpr char kCheckStatuses[] =
    "\nStatus: 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN. Without a limit, a run that\n"
    "measured nothing is critical, and one that measured only a part is a warning.\n"
    "The age of the last run is always said, and counts with --max-age only.";

constexpr char kDoctorStatuses[] =
    "\nStatus: 0 all is well, 1 something is to be looked at or cannot be told,\n"
    "2 something is to be mended.";

constexpr char kRunStatuses[] =
    "\nStatus: 0 ok, 1 partial, 2 failed; 3 there was no run, 75 another one of yours\n"
    "is in progress.";

EpochSeconds currentTime() {
  return std::time(nullptr);
}

/// The arguments as they are given; their meaning is found when all are known.
struct Arguments {
  Selection selection;
  std::string run = "1";
  ExportRequest request;
  ReportRequest reportRequest;
  Limits limits;
  DoctorRequest doctor;
  RunRequest runRequest;
};

CLI::ValidationError badValue(const char* option, const std::string& value,
                              const std::string& what) {
  return CLI::ValidationError(option, fmt::format("\"{}\" is no {}", value, what));
}

/// Adds an option whose value `take` reads.
void addOption(CLI::App& command, const char* name, const char* type, const char* about,
               const std::function<void(const std::string&)>& take) {
  command.add_option_function<std::string>(name, take, about)->type_name(type);
}

void addTime(CLI::App& command, const char* name, const char* about,
             const std::function<void(const When&)>& take) {
  addOption(command, name, "WHEN", about, [name, take](const std::string& text) {
    const auto when = parseWhen(text, currentTime());
    if (!when) {
      throw badValue(name, text,
                     "time: write 2026-11-21, 2026-11-21T05:00, \"20 Nov 20:00\", 05:00, today, "
                     "yesterday, or how long ago: 7d, 12h, 30m");
    }
    take(*when);
  });
}

void addSelection(CLI::App& command, Selection& selection, bool isRepeatable) {
  constexpr char kAboutFrom[] = "Log directory; default: ~/Library/Logs/Qelmora";
  if (isRepeatable) {
    command.add_option("--from", selection.from, kAboutFrom)
        ->type_name("DIR")
        ->allow_extra_args(false);
  } else {
    addOption(command, "--from", "DIR", kAboutFrom,
              [&selection](const std::string& path) { selection.from.emplace_back(path); });
  }
  addTime(command, "--since", "Only runs from then on",
          [&selection](const When& when) { selection.period.since = when.begin; });
  addTime(command, "--until", "Only runs up to then, a day or a minute included",
          [&selection](const When& when) { selection.period.until = when.end; });
}

void addExport(CLI::App& command, ExportRequest& request) {
  command
      .add_option_function<std::string>(
          "FORMAT",
          [&request](const std::string& format) {
            if (format != "csv" && format != "jsonl" && format != "sqlite") {
              throw badValue("FORMAT", format, "format: write csv, jsonl or sqlite");
            }
            request.format = format;
          },
          "csv, jsonl (an object a line) or sqlite")
      ->required()
      ->type_name("");
  addOption(command, "--output", "FILE", "Replace FILE in one step; sqlite needs it",
            [&request](const std::string& path) { request.output = path; });
}

/// Reads "250/40" or, of the download alone, "250".
void readContract(const std::string& text, Contract& contract) {
  const std::size_t slash = std::min(text.find('/'), text.size());
  const auto rate = [&text](const std::string& part) {
    constexpr double kMost = 1e6;
    const auto number = wholeNumber<double>(part);
    if (!number || !(*number > 0 && *number <= kMost)) {
      throw badValue("--contract", text, "DOWN/UP in Mbit/s: write 250/40");
    }
    return number;
  };
  contract.read = rate(text.substr(0, slash));
  if (slash < text.size()) {
    contract.write = rate(text.substr(slash + 1));
  }
}

void addReport(CLI::App& command, ReportRequest& request) {
  addOption(command, "--contract", "DOWN/UP", "Hold the rates to the contract's, in Mbit/s: 250/40",
            [&request](const std::string& text) { readContract(text, request.contract); });
  addOption(command, "--output", "FILE",
            "Replace FILE in one step; default: connection-report.html",
            [&request](const std::string& path) { request.output = path; });
  command.add_flag("--open", request.isToOpen, "Show the page in the browser");
}

/// Reads "3/6".
void readBad(const std::string& text, Limits& limits) {
  const std::size_t slash = std::min(text.find('/'), text.size());
  const auto bad = wholeNumber<std::size_t>(text.substr(0, slash));
  const auto of = wholeNumber<std::size_t>(text.substr(std::min(slash + 1, text.size())));
  if (!bad || !of || *bad == 0 || *bad > *of) {
    throw badValue("--bad", text, "M/N: write 3/6 for three bad runs of the last six");
  }
  limits.bad = *bad;
  limits.of = *of;
}

/// Reads "50%".
void readBelow(const std::string& text, Limits& limits) {
  const auto number =
      wholeNumber<double>(text.substr(0, text.size() - (text.ends_with('%') ? 1 : 0)));
  if (!number || !(*number > 0 && *number <= 100)) {
    throw badValue("--below", text, "share: write 50% for half of the usual");
  }
  limits.below = number;
}

void readMaxAge(const std::string& text, Limits& limits) {
  limits.maxAge = parseLength(text);
  if (!limits.maxAge) {
    throw badValue("--max-age", text, "length of time: write 2h, 90m, 1d");
  }
}

void readFigure(const char* name, const std::string& text, std::optional<double>& figure) {
  constexpr double kMost = 1e9;
  figure = wholeNumber<double>(text);
  if (!figure || !(*figure >= 0 && *figure <= kMost)) {
    throw badValue(name, text, "number: write 200, or 0.5");
  }
}

void addLimits(CLI::App& command, Limits& limits) {
  const auto add = [&](const char* name, const char* type, const char* about,
                       std::optional<double>& limit) {
    addOption(command, name, type, about,
              [name, &limit](const std::string& text) { readFigure(name, text, limit); });
  };
  add("--read", "MBIT", "The read rate is bad below this many Mbit/s", limits.read);
  add("--write", "MBIT", "The write rate is bad below this many Mbit/s", limits.write);
  add("--latency", "MS", "The latency is bad above this many ms", limits.latency);
  const auto addText = [&](const char* name, const char* type, const char* about,
                           void (*take)(const std::string&, Limits&)) {
    addOption(command, name, type, about,
              [&limits, take](const std::string& text) { take(text, limits); });
  };
  addText("--bad", "M/N", "Critical when M of the last N runs are bad", readBad);
  addText("--below", "SHARE", "Warn when a rate is below this share of the usual: 50%", readBelow);
  addText("--max-age", "LENGTH", "Unknown when the last run is older: 2h", readMaxAge);
}

void setUp(CLI::App& app) {
  app.set_help_flag("-h,--help", "Show this");
  app.set_version_flag("--version", "connWatch " CONNWATCH_VERSION, "Show the version");
  app.require_subcommand(0, 1);
  app.footer(kTimes);
  const auto formatter = std::make_shared<CLI::Formatter>();
  formatter->column_width(22);
  formatter->label("SUBCOMMAND", "COMMAND");
  formatter->label("REQUIRED", "");
  app.formatter(formatter);
}

void addDoctor(CLI::App& command, DoctorRequest& request) {
  command
      .add_option("ADDRESS", request.address, "The server; default: that of the timer or last run")
      ->type_name("");
  command.add_flag("--try", request.isTry, "Make an iperf3 test of one second, which moves data");
  command.footer(kDoctorStatuses);
}

void addRun(CLI::App& app, RunRequest& request) {
  CLI::App* const command =
      app.add_subcommand("run", "Make a run, and show how it goes")->group("Commands");
  command
      ->add_option_function<std::string>(
          "ADDRESS", [&request](const std::string& address) { request.address = address; },
          "IP address or host name of the server")
      ->type_name("");
  command->add_flag("--trace", request.hasTrace, "Show what the tester prints");
  command->footer(kRunStatuses);
}

void addCommands(CLI::App& app, Arguments& arguments) {
  const auto add = [&](const char* name, const char* about) {
    CLI::App* const command = app.add_subcommand(name, about)->group("Commands");
    addSelection(*command, arguments.selection,
                 command->check_name("summary") || command->check_name("report"));
    return command;
  };
  addRun(app, arguments.runRequest);
  add("summary", "Usual figures by day and hour, and outages (the default)");
  add("list", "Runs, one a line")->footer(std::string(kTimes) + "\n" + kListMarks);
  add("show", "One run, each figure with its file and line")
      ->add_option("RUN", arguments.run, "05:01, \"20 Nov 05:01\"; 1 is the last, 2 the one before")
      ->type_name("");
  CLI::App* const check = add("check", "A verdict for scripts and monitoring");
  check->footer(std::string(kTimes) + "\n" + kCheckStatuses);
  addLimits(*check, arguments.limits);
  addReport(*add("report", "A page of pictures, to look at and to hand on"),
            arguments.reportRequest);
  addExport(*add("export", "Every run, for other programs"), arguments.request);
  addDoctor(
      *app.add_subcommand("doctor", "What a run would meet, and what to mend")->group("Commands"),
      arguments.doctor);
}

int run(const CLI::App& app, const Arguments& arguments) {
  if (app.got_subcommand("run")) {
    return guardedRun(arguments.runRequest);
  }
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
    return exportRuns(arguments.selection, arguments.request, now);
  }
  if (app.got_subcommand("report")) {
    return report(arguments.selection, arguments.reportRequest, now);
  }
  if (app.got_subcommand("doctor")) {
    return doctor(arguments.doctor, now);
  }
  return summary(arguments.selection, now);
}

/// Says what went wrong. A plugin that can't do what it was asked for is "unknown", and says so
/// where its verdicts stand, if it can write there. A run has a status of its own for that, too.
int refuse(const CLI::App& app, std::string what, bool canWrite) {
  const bool isPlugin = app.got_subcommand("check");
  if (isPlugin && canWrite) {
    std::ranges::replace(what, '|', '/');
    print("UNKNOWN: " + what + "\n");
  } else {
    fmt::print(stderr, "connWatch: {}\n", what);
  }
  if (app.got_subcommand("run")) {
    return kNoRun;
  }
  return isPlugin ? static_cast<int>(Verdict::unknown) : kRefused;
}

std::string nameOfCommand(const CLI::App& app) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  return commands.empty() ? "" : commands.front()->get_name() + " ";
}

int parseAndRun(CLI::App& app, const Arguments& arguments, int argc, char** argv) {
  try {
    app.parse(argc, argv);
    return run(app, arguments);
  } catch (const CLI::CallForVersion& version) {
    print(std::string(version.what()) + "\n");
    return kDone;
  } catch (const CLI::CallForHelp&) {
    print(app.help());
    return kDone;
  } catch (const CLI::ParseError& error) {
    return refuse(
        app, fmt::format("{}\n  See:  connWatch {}--help", error.what(), nameOfCommand(app)), true);
  } catch (const UsageError& error) {
    return refuse(app, error.what(), true);
  }
}

/// A stream that is closed is none into which a file may be opened: what is written to it fails.
void fillClosedStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  fillClosedStreams();
  Arguments arguments;
  CLI::App app(kAbout, "connWatch");
  setUp(app);
  addSelection(app, arguments.selection, true);
  addCommands(app, arguments);
  try {
    return parseAndRun(app, arguments, argc, argv);
  } catch (const std::exception& error) {
    return refuse(app, error.what(), false);
  }
}

}  // namespace watch
