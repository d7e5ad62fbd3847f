#include "views/output.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>

namespace watch {
namespace {

class OutputFile : public testing::Test {
 protected:
  OutputFile() { std::filesystem::create_directory(folder); }
  ~OutputFile() override { std::filesystem::remove_all(folder); }

  void putOld() const { std::ofstream(file) << "old"; }
  std::ptrdiff_t filesInFolder() const {
    return std::distance(std::filesystem::directory_iterator(folder), {});
  }
  static mode_t rightsOf(const std::filesystem::path& path) {
    struct stat found {};
    stat(path.c_str(), &found);
    return found.st_mode & 0777U;
  }

  const std::filesystem::path folder = testing::TempDir() + "watch_output_test";
  const std::filesystem::path file = folder / "runs";
};

TEST_F(OutputFile, IsTheOldOneUntilTheNewOneIsWhole) {
  putOld();
  Output output(file);
  output.write("new ");
  output.write("text");

  EXPECT_EQ(readFile(file), "old");

  output.finish();

  EXPECT_EQ(readFile(file), "new text");
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(OutputFile, StaysTheOldOneWhenTheNewOneIsGivenUp) {
  putOld();
  {
    Output output(file);
    output.write("new");
    EXPECT_EQ(filesInFolder(), 2);
  }

  EXPECT_EQ(readFile(file), "old");
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(OutputFile, HasTheRightsOfANewFileOrOfTheOneBefore) {
  const mode_t mask = umask(027);
  {
    Output output(file);
    output.finish();
  }
  EXPECT_EQ(rightsOf(file), 0640U);

  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  {
    Output output(file);
    output.finish();
  }
  umask(mask);

  EXPECT_EQ(rightsOf(file), 0400U);
}

TEST_F(OutputFile, IsTheOneToWhichALinkLeads) {
  putOld();
  const std::filesystem::path link = folder / "link";
  std::filesystem::create_symlink("runs", link);
  Output output(link);
  output.write("new");
  output.finish();

  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(readFile(file), "new");
}

std::string errorOf(const std::filesystem::path& path) {
  try {
    const Output output(path);
    return "none";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST_F(OutputFile, IsNoFolderAndNoDevice) {
  EXPECT_EQ(errorOf(folder), folder.string() + " is no file that can be replaced");
  EXPECT_EQ(errorOf("/dev/null"), "/dev/null is no file that can be replaced");
}

TEST_F(OutputFile, NeedsItsFolder) {
  EXPECT_EQ(errorOf(folder / "none" / "runs"),
            (folder / "none" / "runs").string() + ": No such file or directory");
}

}  // namespace
}  // namespace watch
