#include "doctor/logs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Room, IsEnoughOrLittleOrTooLittleOrNotKnown) {
  EXPECT_EQ(judgeRoom("~/logs", 77'136'000'000),
            (Finding{Level::well, "logs", "~/logs: writable, 77 GB free"}));
  EXPECT_EQ(judgeRoom("~/logs", 50'000'000),
            (Finding{Level::well, "logs", "~/logs: writable, 50 MB free"}));
  EXPECT_EQ(judgeRoom("~/logs", 49'999'999),
            (Finding{Level::look, "logs", "~/logs has 49 MB free. Make room"}));
  EXPECT_EQ(judgeRoom("~/logs", 999'999),
            (Finding{Level::mend, "logs",
                     "~/logs has less than a megabyte free: lines will be cut. Make room"}));
  EXPECT_EQ(judgeRoom("~/logs", std::nullopt),
            (Finding{Level::unknown, "logs", "how much room is in ~/logs is not known"}));
}

}  // namespace
}  // namespace watch
