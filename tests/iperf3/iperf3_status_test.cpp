#include "iperf3/iperf3_status.h"

#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

class Iperf3Status : public RunFixture {};

TEST_F(Iperf3Status, HasItsFieldsInTheirOrder) {
  const iperf3_status status;
  const auto& [date, clientIp, serverIp, clientPort, serverPort, testTime, reverse, transferId,
               lengthSent, bpsSent, lengthRcvd, bpsRcvd] = status;

  EXPECT_EQ(&date, &status.date);
  EXPECT_EQ(&clientIp, &status.clientIp);
  EXPECT_EQ(&serverIp, &status.serverIp);
  EXPECT_EQ(&clientPort, &status.clientPort);
  EXPECT_EQ(&serverPort, &status.serverPort);
  EXPECT_EQ(&testTime, &status.testTime);
  EXPECT_EQ(&reverse, &status.reverse);
  EXPECT_EQ(&transferId, &status.transferId);
  EXPECT_EQ(&lengthSent, &status.lengthSent);
  EXPECT_EQ(&bpsSent, &status.bpsSent);
  EXPECT_EQ(&lengthRcvd, &status.lengthRcvd);
  EXPECT_EQ(&bpsRcvd, &status.bpsRcvd);
}

TEST_F(Iperf3Status, HasTextsOf32Characters) {
  EXPECT_EQ(sizeof(iperf3_status::date), 32U);
  EXPECT_EQ(sizeof(iperf3_status::clientIp), 32U);
  EXPECT_EQ(sizeof(iperf3_status::serverIp), 32U);
  EXPECT_EQ(sizeof(iperf3_status::testTime), 32U);
  EXPECT_EQ(sizeof(iperf3_status::reverse), 32U);
}

TEST_F(Iperf3Status, PrintsItsTwelveFields) {
  iperf3_status status;
  formatInto(status.date, "1605505183");
  formatInto(status.clientIp, "192.168.1.20");
  formatInto(status.serverIp, "192.168.1.10");
  status.clientPort = 54012;
  status.serverPort = 5201;
  formatInto(status.testTime, "10");
  formatInto(status.reverse, "0");
  status.transferId = 3;
  status.lengthSent = 1'180'000'000;
  status.bpsSent = 943718400.5;
  status.lengthRcvd = std::numeric_limits<unsigned long long>::max();
  status.bpsRcvd = 943718401.5;

  EXPECT_EQ(console([&status] { printIperf3Status(status); }),
            "date 1605505183\n"
            "client ip 192.168.1.20\n"
            "server ip 192.168.1.10\n"
            "client tcp port 54012\n"
            "server tcp port 5201\n"
            "transfer ID 3\n"
            "test time 10\n"
            "reverse 0\n"
            "length sent 1180000000 \n"
            "Bps sent 943718400\n"
            "length rcvd 18446744073709551615 \n"
            "Bps rcvd 943718402\n");
}

TEST_F(Iperf3Status, StartsEmpty) {
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

TEST_F(Iperf3Status, PrintsTextsOf32CharactersAndRatesThatAreNotNumbers) {
  iperf3_status status;
  copyInto(status.date, std::string(32, 'd'));
  copyInto(status.clientIp, std::string(32, 'c'));
  copyInto(status.serverIp, std::string(32, 's'));
  status.clientPort = -1;
  status.serverPort = -2;
  copyInto(status.testTime, std::string(32, 't'));
  copyInto(status.reverse, std::string(32, 'r'));
  status.transferId = -3;
  status.bpsSent = std::numeric_limits<double>::quiet_NaN();
  status.bpsRcvd = -std::numeric_limits<double>::infinity();

  EXPECT_EQ(console([&status] { printIperf3Status(status); }),
            "date dddddddddddddddddddddddddddddddd\n"
            "client ip cccccccccccccccccccccccccccccccc\n"
            "server ip ssssssssssssssssssssssssssssssss\n"
            "client tcp port -1\n"
            "server tcp port -2\n"
            "transfer ID -3\n"
            "test time tttttttttttttttttttttttttttttttt\n"
            "reverse rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr\n"
            "length sent 0 \n"
            "Bps sent nan\n"
            "length rcvd 0 \n"
            "Bps rcvd -inf\n");
}

}  // namespace
