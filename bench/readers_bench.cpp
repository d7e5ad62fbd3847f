// Times each reader over the files of a directory that make_inputs.py has made.
//
// Usage: readers_bench [OPTION OF GOOGLE BENCHMARK...] DIRECTORY
#include "readers.h"
#include "support/iperf3_record.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

namespace {

/// Ends the process unless all readers find the same in the report.
void requireAgreement(const std::string& path) {
  const std::string expected = recordText(reportReaders().front().read(path));
  for (const ReportReader& reader : reportReaders()) {
    if (recordText(reader.read(path)) != expected) {
      std::fprintf(stderr, "%s reads %s differently\n", reader.name, path.c_str());
      std::exit(1);
    }
  }
}

void addBenchmark(const std::string& name, const std::function<void()>& read) {
  benchmark::RegisterBenchmark(name.c_str(), [read](benchmark::State& state) {
    for (auto turn : state) {
      read();
    }
  });
}

void addReport(const std::filesystem::path& path) {
  requireAgreement(path);
  for (const ReportReader& reader : reportReaders()) {
    addBenchmark("report/" + path.stem().string() + "/" + reader.name,
                 [=] { benchmark::DoNotOptimize(reader.read(path)); });
  }
}

void addHistory(const std::filesystem::path& directory) {
  for (const HistoryReader& reader : historyReaders()) {
    addBenchmark("history/" + directory.filename().string() + "/" + reader.name,
                 [=] { reader.read(directory.string() + "/"); });
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::fputs("usage: readers_bench [OPTION...] DIRECTORY\n", stderr);
    return 2;
  }
  const std::filesystem::path inputs = argv[1];
  for (const auto& entry : std::filesystem::directory_iterator(inputs / "reports")) {
    addReport(entry.path());
  }
  for (const auto& entry : std::filesystem::directory_iterator(inputs / "histories")) {
    addHistory(entry.path());
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
