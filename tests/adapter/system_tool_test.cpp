#include "system_tool.h"

#include "adapter/adapter_fixture.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr char kAdapters[] = "CONNTESTER_ADAPTERS";

/// Finds the tool named "tool", of which this program takes the adapter's place.
class SystemTool : public DirectoryFixture {
 protected:
  void TearDown() override {
    DirectoryFixture::TearDown();
    fs::remove("/usr/local/bin/tool");
  }

  static void makeTool(const fs::path& path) {
    fs::create_directories(fs::absolute(path).parent_path());
    writeScript(path, "");
  }

  static void linkItself(const fs::path& path) {
    fs::create_directories(fs::absolute(path).parent_path());
    fs::create_symlink(fs::read_symlink("/proc/self/exe"), path);
  }
};

TEST_F(SystemTool, IsTheFirstInPathBehindThisProgram) {
  for (const char* const path : {"before/tool", "first/tool", "second/tool", "tool"}) {
    makeTool(path);
  }
  linkItself("adapter/tool");
  fs::create_directory("chain");
  fs::create_symlink("../adapter/tool", "chain/tool");
  fs::create_directories("directory/tool");
  fs::create_directory("text");
  writeFile("text/tool", "#!/bin/sh\n");
  const struct {
    const char* path;
    const char* tool;
  } cases[] = {
      {"adapter:first:second", "first/tool"},
      {"before:adapter:second:first", "second/tool"},
      {"adapter:before:adapter:first", "first/tool"},
      {"adapter:before:chain:first", "first/tool"},
      {"first:second", "first/tool"},  // called by its path
      {"adapter::first", "./tool"},
      {"adapter:", "./tool"},
      {"", "./tool"},
      {"adapter:directory:text:missing:first", "first/tool"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    setPath(c.path);
    unsetenv(kAdapters);

    EXPECT_EQ(findSystemTool("tool", "package"), c.tool);
  }
}

TEST_F(SystemTool, IsOneInTheUsualFoldersWherePathHasNone) {
  makeTool("/usr/local/bin/tool");
  makeTool("before/tool");
  makeTool("tool");
  linkItself("adapter/tool");
  for (const char* const path : {"missing", "before:adapter", "adapter"}) {
    SCOPED_TRACE(path);
    setPath(path);
    unsetenv(kAdapters);

    EXPECT_EQ(findSystemTool("tool", "package"), "/usr/local/bin/tool");
  }
  unsetenv("PATH");
  unsetenv(kAdapters);
  EXPECT_EQ(findSystemTool("tool", "package"), "/usr/local/bin/tool");
}

TEST_F(SystemTool, IsMissedWithAStatusAndAnAdvice) {
  linkItself("adapter/tool");
  linkItself("/usr/local/bin/tool");
  makeTool("tool");
  setPath("adapter");

  EXPECT_EXIT(findSystemTool("tool", "package"), testing::ExitedWithCode(127),
              "^tool adapter: no other tool in PATH or the usual folders; install one, for example "
              "with: apt-get install package\n$");
}

TEST_F(SystemTool, IsNoAdapterThatTheCallHasComeThrough) {
  makeTool("other/tool");
  makeTool("first/tool");
  setPath("other:first");
  struct stat other = {};
  ASSERT_EQ(stat("other/tool", &other), 0);
  const std::string key =
      " " + std::to_string(other.st_dev) + ":" + std::to_string(other.st_ino) + " ";
  setenv(kAdapters, key.c_str(), 1);

  EXPECT_EQ(findSystemTool("tool", "package"), "first/tool");
}

TEST_F(SystemTool, IsNotLookedForTwiceInOneCall) {
  makeTool("first/tool");
  setPath("first");
  EXPECT_EQ(findSystemTool("tool", "package"), "first/tool");

  EXPECT_EXIT(findSystemTool("tool", "package"), testing::ExitedWithCode(126),
              "^tool adapter: called again by what it has taken for the system's tool\n$");
}

}  // namespace
