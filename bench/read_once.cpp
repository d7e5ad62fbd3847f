// Lets one reader read one report, or the histories of one directory, for a look at the whole
// process.
//
// Usage: read_once READER PATH
#include "readers.h"

#include <cstdio>
#include <string_view>

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: read_once READER PATH\n", stderr);
    return 2;
  }
  for (const ReportReader& reader : reportReaders()) {
    if (std::string_view(argv[1]) == reader.name) {
      reader.read(argv[2]);
      return 0;
    }
  }
  for (const HistoryReader& reader : historyReaders()) {
    if (std::string_view(argv[1]) == reader.name) {
      reader.read(argv[2]);
      return 0;
    }
  }
  std::fprintf(stderr, "read_once: no reader has the name %s\n", argv[1]);
  return 2;
}
