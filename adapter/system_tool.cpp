#include "system_tool.h"

#include "messages.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr char kOwnFile[] = "/proc/self/exe";
constexpr char kAdaptersVariable[] = "CONNTESTER_ADAPTERS";

constexpr const char* kUsualFolders[] = {"/usr/local/bin",  "/usr/bin",  "/bin",
                                         "/usr/local/sbin", "/usr/sbin", "/sbin"};

std::string valueOf(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr ? value : "";
}

bool isExecutableFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

/// " DEVICE:NUMBER " of the file at `path`, the same for every link to it; "" without a file.
std::string fileKey(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    return "";
  }
  // Not by "+", of which g++ 12 warns in vain when it optimises.
  return std::string(" ")
      .append(std::to_string(status.st_dev))
      .append(":")
      .append(std::to_string(status.st_ino))
      .append(" ");
}

/// The key of this program's own file.
std::string ownKey(const std::string& name) {
  std::string key = fileKey(kOwnFile);
  if (key.empty()) {
    giveUp(name, cannot(std::string("tell which file it is itself from ") + kOwnFile),
           kCannotRunStatus);
  }
  return key;
}

/// Adds the adapter of the key `own` to those that the call has come through, and returns them all.
std::string passThrough(const std::string& name, const std::string& own) {
  const std::string before = valueOf(kAdaptersVariable);
  if (before.find(own) != std::string::npos) {
    giveUp(name, "called again by what it has taken for the system's " + name, kCannotRunStatus);
  }
  setenv(kAdaptersVariable, (before + own).c_str(), 1);
  return before + own;
}

/// The paths at which PATH has a shell look for `name`, in this order.
std::vector<std::string> placesInPath(const std::string& name) {
  std::vector<std::string> places;
  if (std::getenv("PATH") == nullptr) {
    return places;
  }
  const std::string path = valueOf("PATH");
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
    end = path.find(':', start);
    const std::string folder = path.substr(start, end - start);
    // An empty name is the working directory.
    places.push_back((folder.empty() ? "." : folder) + "/" + name);
  }
  return places;
}

}  // namespace

std::string findSystemTool(const std::string& name, const std::string& package) {
  const std::string own = ownKey(name);
  const std::string passed = passThrough(name, own);
  std::vector<std::string> places;
  for (const std::string& place : placesInPath(name)) {
    places.push_back(place);
    if (fileKey(place) == own) {
      // What stands before it may be a script that has called it, and would do so again.
      places.clear();
    }
  }
  for (const char* const folder : kUsualFolders) {
    places.push_back(std::string(folder) + "/" + name);
  }
  for (const std::string& place : places) {
    if (isExecutableFile(place) && passed.find(fileKey(place)) == std::string::npos) {
      return place;
    }
  }
  giveUp(name,
         "no other " + name + " in PATH or the usual folders; install one, for example with: " +
             "apt-get install " + package,
         kNotFoundStatus);
}
