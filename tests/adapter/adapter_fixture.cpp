#include "adapter/adapter_fixture.h"

#include "adapter/process.h"
#include "support/files.h"

#include <cstdlib>
#include <unistd.h>

namespace fs = std::filesystem;

void DirectoryFixture::SetUp() {
  char path[] = "/tmp/adapter.XXXXXX";
  ASSERT_NE(mkdtemp(path), nullptr);
  directory = path;
  fs::current_path(directory);
}

void DirectoryFixture::TearDown() {
  fs::current_path("/");
  fs::remove_all(directory);
}

AdapterFixture::AdapterFixture(const std::string& path)
    : adapter(path),
      name(fs::path(path).filename()),
      adapterDirectory(fs::path(path).parent_path()) {}

void AdapterFixture::SetUp() {
  DirectoryFixture::SetUp();
  fs::create_directory("system");
  tool = directory / "system" / name;
  setPath(adapterDirectory + ":" + (directory / "system").string());
}

void AdapterFixture::fakeTool(const std::string& commands) const {
  writeScript(tool, "#!/bin/sh\n" + commands);
}

void AdapterFixture::linkTool(const std::string& path) const {
  ASSERT_EQ(access(path.c_str(), X_OK), 0) << "There is no " << name << " at \"" << path
                                           << "\": script/test installs all that the tests need.";
  fs::create_symlink(path, tool);
}

std::string AdapterFixture::run(const std::vector<std::string>& arguments,
                                const std::function<void()>& prepare) const {
  std::vector<std::string> all = {adapter};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return Process(all, prepare).result();
}

std::string AdapterFixture::runInto(int signal) const {
  Process process({adapter});
  EXPECT_EQ(process.readLine(), "ready\n");
  process.sendSignal(signal);
  return process.result();
}

void writeScript(const fs::path& path, const std::string& text) {
  writeFile(path, text);
  fs::permissions(path, fs::perms::owner_all);
}

void setPath(const std::string& path) {
  setenv("PATH", path.c_str(), 1);
}

void setGraceSeconds(const std::string& seconds) {
  setenv("CONNTESTER_GRACE_SECONDS", seconds.c_str(), 1);
}
