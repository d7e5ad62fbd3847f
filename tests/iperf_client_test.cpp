#include "iperf_client.h"

#include "iperf2/iperf2_status.h"
#include "iperf3/iperf3_status.h"
#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>

namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

class IperfClient : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(cmd, "client\n");
  }
};

TEST_F(IperfClient, RunsItsCommandSilentlyAndThenWaits) {
  fakeHost.onCommand = [](const std::string&) { EXPECT_THAT(fakeHost.sleeps, IsEmpty()); };
  fakeHost.shellStatus = 127 << 8;
  fakeHost.sleepStatus = -1;

  EXPECT_EQ(console(runIperfClient), "");

  EXPECT_THAT(fakeHost.commands, ElementsAre("client\n"));
  EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(11, 0)));
}

TEST_F(IperfClient, PrintsItsCommandFirstWhenTraced) {
  ConfigurationParameters.debugConfFile = true;
  fakeHost.onCommand = [](const std::string&) { std::puts("(client)"); };

  EXPECT_EQ(console(runIperfClient), "command=client\n\n(client)\n");
}

TEST_F(IperfClient, IsNotTracedByAnyOtherSwitch) {
  flipPrintsBut(&Configuration::debugConfFile);

  EXPECT_EQ(console(runIperfClient), "");
}

TEST_F(IperfClient, WaitsASecondMoreThanTheTestInWrapping32Bits) {
  const struct {
    std::int32_t testTime;
    std::time_t seconds;
    long nanoseconds;
  } cases[] = {{10, 11, 0},
               {1, 2, 0},
               {0, 1, 0},
               {-1, 0, 3'000'000},
               {-2, 0, 3'000'000},
               {2'147'482, 2'147'483, 0},
               {2'147'483, 0, 3'000'000},  // wraps to a negative number
               {2'147'484, 0, 3'000'000},
               {4'294'967, 0, 704'000'000},  // wraps past zero
               {4'294'968, 1, 704'000'000},
               {std::numeric_limits<std::int32_t>::max(), 0, 3'000'000},
               {std::numeric_limits<std::int32_t>::min(), 1, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.testTime);
    fakeHost.sleeps.clear();
    ConfigurationParameters.iperfTestTime = c.testTime;

    runIperfClient();

    EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(c.seconds, c.nanoseconds)));
  }
}

constexpr char kConnection[] =
    "date today\n"
    "client ip 192.168.1.20\n"
    "server ip 192.168.1.10\n"
    "client tcp port -54012\n"
    "server tcp port 5201\n"
    "transfer ID 3\n"
    "test time 10\n";

template <typename Status>
Status connection() {
  Status status;
  formatInto(status.date, "today");
  formatInto(status.clientIp, "192.168.1.20");
  formatInto(status.serverIp, "192.168.1.10");
  status.clientPort = -54012;
  status.serverPort = 5201;
  status.transferId = 3;
  formatInto(status.testTime, "10");
  return status;
}

TEST_F(IperfClient, ConnectionIsPrintedAlikeForBothVersions) {
  EXPECT_EQ(console([] { printConnection(connection<iperf2_status>()); }), kConnection);
  EXPECT_EQ(console([] { printConnection(connection<iperf3_status>()); }), kConnection);
}

}  // namespace
