#include "support/recordings.h"

#include "support/run_fixture.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

constexpr char kExpectations[] = "expected.txt";

/// The files below `folder`, without the expectations, in order.
std::vector<std::string> filesBelow(const std::filesystem::path& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().filename() != kExpectations) {
      files.push_back(std::filesystem::relative(entry.path(), folder).string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

Recording recordingOf(const std::string& row) {
  std::istringstream columns(row);
  Recording recording;
  columns >> recording.file;
  for (std::string column; columns >> column;) {
    recording.expected += recording.expected.empty() ? column : " " + column;
  }
  return recording;
}

}  // namespace

std::vector<Recording> recordings(const std::string& tool) {
  std::istringstream rows(readFile(testData(tool + "/" + kExpectations)));
  std::vector<Recording> all;
  std::vector<std::string> files;
  for (std::string row; std::getline(rows, row);) {
    if (!row.starts_with('#')) {
      all.push_back(recordingOf(row));
      files.push_back(all.back().file);
    }
  }
  EXPECT_EQ(files, filesBelow(testData(tool)));
  return all;
}

std::string withCarriageReturns(const std::string& text) {
  std::string lines;
  for (const char character : text) {
    lines += character == '\n' ? "\r\n" : std::string(1, character);
  }
  return lines;
}
