// An adapter in a directory of its own, with "system/" in it, where a tool can stand.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// The working directory of a test, empty before and gone after it.
class DirectoryFixture : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::filesystem::path directory;
};

/// PATH names the adapter's directory, then "system/".
class AdapterFixture : public DirectoryFixture {
 protected:
  /// For the tests of the adapter at `path`.
  explicit AdapterFixture(const std::string& path);
  void SetUp() override;

  /// Makes `commands` of the shell the system's tool. It has only what the shell itself brings.
  void fakeTool(const std::string& commands) const;

  /// Makes the program at `path`, which has to be there, the system's tool.
  void linkTool(const std::string& path) const;

  /// Runs the adapter and returns what it printed on both its outputs, then how it ended.
  std::string run(
      const std::vector<std::string>& arguments = {},
      const std::function<void()>& prepare = [] {}) const;

  /// The same of an adapter that gets `signal` when its tool has printed "ready".
  std::string runInto(int signal) const;

  std::string adapter;
  std::string name;              // of the tool
  std::string adapterDirectory;  // in which the adapter is
  std::string tool;              // the path of the system's one
};

/// Writes an executable file.
void writeScript(const std::filesystem::path& path, const std::string& text);

void setPath(const std::string& path);

/// The grace, and with it the patience, of the adapters that are started from now on.
void setGraceSeconds(const std::string& seconds);
