#include "iperf3/iperf3_status.h"

#include "support/iperf_texts.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

class Iperf3Status : public RunFixture {};

TEST_F(Iperf3Status, PrintsItsTwelveFieldsWhichStartEmpty) {
  EXPECT_EQ(console([] { printIperf3Status({}); }),
            "date \n"
            "client ip \n"
            "server ip \n"
            "client tcp port 0\n"
            "server tcp port 0\n"
            "transfer ID 0\n"
            "test time \n"
            "reverse \n"
            "length sent 0 \n"
            "Bps sent 0\n"
            "length rcvd 0 \n"
            "Bps rcvd 0\n");
}

TEST_F(Iperf3Status, PrintsTextsOf32CharactersAndRatesWithoutDecimals) {
  // An initializer names the fields in their order, or the compiler refuses it.
  iperf3_status status = {.date = {},
                          .clientIp = {},
                          .serverIp = {},
                          .clientPort = -1,
                          .serverPort = -2,
                          .testTime = {},
                          .reverse = {},
                          .transferId = -3,
                          .lengthSent = std::numeric_limits<unsigned long long>::max(),
                          .bpsSent = 943718401.5,
                          .lengthRcvd = 1'180'000'000,
                          .bpsRcvd = -std::numeric_limits<double>::infinity()};
  copyInto(status.date, std::string(32, 'd'));
  copyInto(status.clientIp, std::string(32, 'c'));
  copyInto(status.serverIp, std::string(32, 's'));
  copyInto(status.testTime, std::string(32, 't'));
  copyInto(status.reverse, std::string(32, 'r'));

  EXPECT_EQ(console([&status] { printIperf3Status(status); }),
            std::string(kLongConnection) +
                "reverse rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr\n"
                "length sent 18446744073709551615 \n"
                "Bps sent 943718402\n"
                "length rcvd 1180000000 \n"
                "Bps rcvd -inf\n");
}

}  // namespace
