// The recorded tool output of tests/data/, and what is expected of each file.
#pragma once

#include <string>
#include <vector>

/// A file of tests/data/<tool>/ and the row that stands for it in the "expected.txt" beside it,
/// with one blank between the columns.
struct Recording {
  std::string file;
  std::string expected;
};

/// The rows of tests/data/<tool>/expected.txt. Fails the test unless they name every other file of
/// the folder once, in order.
std::vector<Recording> recordings(const std::string& tool);

/// `text` with a carriage return in front of every newline.
std::string withCarriageReturns(const std::string& text);
