// What the runs of iperf2 and of iperf3 have in common.
#pragma once

#include "run_state.h"
#include "support/fake_host.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>

/// Expects that `step` runs the client, by the command line that `client` gives for an address and
/// a test time, and then waits, and then runs `append`.
template <typename Step, typename Client>
void expectClientWaitAndAppend(Step step, Client client, const std::string& append) {
  const struct {
    const char* address;
    int testTime;
  } cases[] = {{"10.0.0.5", 10},
               {"10.0.0.5", 0},
               {"10.0.0.5", -1},
               {"10.0.0.5", std::numeric_limits<int>::max()},
               {"", 10}};
  for (const auto& c : cases) {
    fakeHost.commands.clear();
    fakeHost.sleeps.clear();
    fakeHost.onCommand = [&append](const std::string& command) {
      EXPECT_EQ(fakeHost.sleeps.size(), command == append ? 1U : 0U);
    };
    formatInto(ipaddr, "%s", c.address);
    ConfigurationParameters.iperfTestTime = c.testTime;

    step();

    EXPECT_THAT(fakeHost.commands, testing::ElementsAre(client(c.address, c.testTime), append));
    EXPECT_EQ(cmd, append);
  }
}
