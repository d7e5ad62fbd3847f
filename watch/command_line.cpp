#include "command_line.h"

#include "evidence/evidence.h"
#include "runs/join.h"
#include "views/export_jsonl.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

namespace watch {

int runCommandLine(int argc, char** argv) {
  CLI::App app("Answers from what the runs of connTester have left.", "connWatch");
  std::string from;
  CLI::App* const exporting = app.add_subcommand("export", "Write every run.");
  std::string format;
  exporting->add_option("FORMAT", format)->required();
  exporting->add_option("--from", from)->required();
  CLI11_PARSE(app, argc, argv);
  const Evidence evidence = readEvidence(LogDirectory(from));
  for (const Run& run : joinRuns(evidence)) {
    const std::string line = jsonLine(run, evidence.files);
    std::fwrite(line.data(), 1, line.size(), stdout);
  }
  return 0;
}

}  // namespace watch
