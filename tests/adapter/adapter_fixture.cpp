#include "adapter/adapter_fixture.h"

#include "adapter/process.h"

#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

AdapterFixture::AdapterFixture(const std::string& path)
    : adapter(path), name(fs::path(path).filename()) {}

void AdapterFixture::SetUp() {
  char path[] = "/tmp/adapter.XXXXXX";
  ASSERT_NE(mkdtemp(path), nullptr);
  directory = path;
  fs::create_directory(directory / "system");
  fs::current_path(directory);
  setPath(adapterDirectory() + ":" + (directory / "system").string());
}

void AdapterFixture::TearDown() {
  fs::current_path("/");
  fs::remove_all(directory);
}

std::string AdapterFixture::adapterDirectory() const {
  return fs::path(adapter).parent_path();
}

void AdapterFixture::writeScript(const fs::path& path, const std::string& text) const {
  std::ofstream(directory / path) << text;
  fs::permissions(directory / path, fs::perms::owner_all);
}

void AdapterFixture::fakeTool(const std::string& commands) const {
  writeScript("system/" + name, "#!/bin/sh\n" + commands);
}

std::string AdapterFixture::run(const std::vector<std::string>& arguments,
                                const std::function<void()>& prepare) const {
  std::vector<std::string> all = {adapter};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Process process(all, prepare);
  const std::string output = process.readOutput();
  return output + process.readErrors() + process.end();
}

void setPath(const std::string& path) {
  setenv("PATH", path.c_str(), 1);
}

void setGraceSeconds(const std::string& seconds) {
  setenv("CONNTESTER_GRACE_SECONDS", seconds.c_str(), 1);
}
