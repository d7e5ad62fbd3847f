// What the iperf3 adapter does otherwise than the ping adapter, in front of fake tools.

#include "adapter/adapter_fixture.h"
#include "adapter/process.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

/// Where the tester looks for iperf3.
constexpr char kFixedPath[] = "/usr/local/bin/Qelmora/iperf3";

class Iperf3Adapter : public AdapterFixture {
 protected:
  Iperf3Adapter() : AdapterFixture(IPERF3_ADAPTER) {}
};

TEST_F(Iperf3Adapter, LeavesTheLanguageAndTheOutputAlone) {
  fakeTool("echo \"$LC_ALL\"; echo rtt min/avg/max/mdev = 1/2/3/4 ms");

  EXPECT_EQ(run({}, [] { setenv("LC_ALL", "de_DE.UTF-8", 1); }),
            "de_DE.UTF-8\nrtt min/avg/max/mdev = 1/2/3/4 ms\nexit status 0");
}

TEST_F(Iperf3Adapter, EndsWithItsToolAlsoWhereAChildHoldsTheOutput) {
  fakeTool("exec 3<&0; read -r line <&3 & exit 3");

  EXPECT_EQ(Process({adapter}).end(), "exit status 3");
}

TEST_F(Iperf3Adapter, FindsTheToolFromTheFixedPathOfTheTester) {
  fs::create_symlink(adapter, kFixedPath);
  adapter = kFixedPath;
  fs::create_directory("back");
  fs::create_symlink(kFixedPath, "back/iperf3");
  fakeTool("echo in PATH");
  writeScript("/usr/local/bin/iperf3", "#!/bin/sh\necho in a usual folder");
  const struct {
    const char* path;
    const char* output;
  } cases[] = {
      {"system", "in PATH\n"},
      {"back:system", "in PATH\n"},
      {"system:back", "in a usual folder\n"},
      {"back", "in a usual folder\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    setPath(c.path);

    EXPECT_EQ(run(), std::string(c.output) + "exit status 0");
  }
  fs::remove(kFixedPath);
  fs::remove("/usr/local/bin/iperf3");
}

}  // namespace
