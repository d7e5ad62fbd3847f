// Runs a fuzz target once over every file below the paths of its command line, without libFuzzer.
#include "support/files.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& path) {
  std::cerr << path.native() << std::endl;
  const std::string input = readFile(path);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

unsigned replayAll(const std::filesystem::path& directory) {
  unsigned count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
    if (entry.is_regular_file()) {
      replay(entry.path());
      ++count;
    }
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  unsigned count = 0;
  for (int i = 1; i < argc; ++i) {
    count += replayAll(argv[i]);
  }
  std::cerr << count << " inputs replayed\n";
  return count > 0 ? 0 : 1;
}
