#include "support/files.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

std::string readFile(const std::string& path) {
  const std::ifstream file(path, std::ios::binary);
  if (!file.good()) {
    throw std::runtime_error("cannot read " + path);
  }
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text << std::flush;
  if (!file.good()) {
    throw std::runtime_error("cannot write " + path);
  }
}

bool fileExists(const std::string& path) {
  return std::filesystem::exists(path);
}
