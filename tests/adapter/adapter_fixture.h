// An adapter in a directory of its own, with "system/" in it, where a fake tool can stand.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// PATH names the adapter's directory, then "system/". The directory is also the working directory.
class AdapterFixture : public testing::Test {
 protected:
  /// For the tests of the adapter at `path`.
  explicit AdapterFixture(const std::string& path);
  void SetUp() override;
  void TearDown() override;

  std::string adapterDirectory() const;

  /// Writes an executable script that stands at `path`, by default below the directory.
  void writeScript(const std::filesystem::path& path, const std::string& text) const;

  /// Makes `commands` of the shell the system's tool. It has only what the shell itself brings.
  void fakeTool(const std::string& commands) const;

  /// Runs the adapter and returns what it printed on both its outputs, then how it ended.
  std::string run(
      const std::vector<std::string>& arguments = {},
      const std::function<void()>& prepare = [] {}) const;

  std::string adapter;
  std::string name;  // of the tool
  std::filesystem::path directory;
};

void setPath(const std::string& path);

/// The grace, and with it the patience, of the adapters that are started from now on.
void setGraceSeconds(const std::string& seconds);
