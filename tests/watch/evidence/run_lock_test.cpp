#include "evidence/run_lock.h"

#include "watch/support/log_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace watch {
namespace {

TEST(RunLock, TellsThatTheRunWhichTookItHasEnded) {
  const LogFolder folder;
  EXPECT_EQ(beginOfEndedRun(folder.directory()), std::nullopt);

  folder.write("connTester.lock", "1234 2026-11-21 10:00:00\n");
  const std::string path = folder.path() / "connTester.lock";
  const timespec times[] = {{0, UTIME_OMIT}, {1'795'219'200, 0}};
  utimensat(AT_FDCWD, path.c_str(), times, 0);
  EXPECT_EQ(beginOfEndedRun(folder.directory()), 1'795'219'200);

  const int held = open(path.c_str(), O_RDONLY);
  flock(held, LOCK_EX);
  EXPECT_EQ(beginOfEndedRun(folder.directory()), std::nullopt);
  close(held);
}

}  // namespace
}  // namespace watch
