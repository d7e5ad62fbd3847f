#include "time_services.h"

#include "support/run_fixture.h"

#include <gtest/gtest.h>

namespace {

class TimeServices : public RunFixture {};

TEST_F(TimeServices, StampsTheCurrentLocalTime) {
  char stamp[16];

  EXPECT_EQ(getDateTimeString(stamp), 15);

  EXPECT_STREQ(stamp, kStartStamp);
}

}  // namespace
