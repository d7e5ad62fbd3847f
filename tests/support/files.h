// Whole files, as tests, fuzz targets and benchmarks read and write them.
#pragma once

#include <string>

/// Returns the whole file; throws std::runtime_error when there is none.
std::string readFile(const std::string& path);

/// Replaces the file by `text`; throws std::runtime_error when that fails.
void writeFile(const std::string& path, const std::string& text);

bool fileExists(const std::string& path);
