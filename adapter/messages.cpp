#include "messages.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

void complain(const std::string& tool, const std::string& message) {
  std::fputs((tool + " adapter: " + message + "\n").c_str(), stderr);
}

void giveUp(const std::string& tool, const std::string& message, int status) {
  complain(tool, message);
  std::_Exit(status);
}

std::string cannot(const std::string& task) {
  return "cannot " + task + ": " + std::strerror(errno);
}
