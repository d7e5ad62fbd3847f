#include "views/doctor.h"

#include <gtest/gtest.h>

#include <string>

namespace watch {
namespace {

constexpr std::size_t kNarrow = 41;

Style styleOf(std::size_t width) {
  Style style;
  style.width = width;
  return style;
}

TEST(DoctorView, SaysThatAllIsWell) {
  EXPECT_EQ(doctorView({{Level::well, "clock", "set by the network"}}, Style()),
            "ok   clock     set by the network\n\nAll well.\n");
}

TEST(DoctorView, CountsWhatIsToBeDone) {
  EXPECT_EQ(doctorView({{Level::mend, "a", "b"},
                        {Level::look, "c", "d"},
                        {Level::look, "e", "f"},
                        {Level::unknown, "g", "h"}},
                       Style()),
            "FAIL a         b\n"
            "warn c         d\n"
            "warn e         f\n"
            "?    g         h\n"
            "\n"
            "1 thing to mend, 2 to look at, 1 not known.\n");
  EXPECT_EQ(doctorView({{Level::unknown, "g", "h"}, {Level::unknown, "i", "j"}}, Style()),
            "?    g         h\n"
            "?    i         j\n"
            "\n"
            "2 things not known.\n");
}

TEST(DoctorView, BreaksLinesAtBlanksAndNeverARemedy) {
  EXPECT_EQ(doctorView({{Level::look, "nul", "one two three four five six seven. Write:", "a b=c"},
                        {Level::look, "nul", "é é é é é é é é é é é é é é", ""},
                        {Level::look, "nul", "Run:", "a command that is longer than a line"}},
                       styleOf(kNarrow)),
            "warn nul       one two three four five\n"
            "               six seven. Write:  a b=c\n"
            "warn nul       é é é é é é é é é é é é é\n"
            "               é\n"
            "warn nul       Run:\n"
            "                 a command that is longer than a line\n"
            "\n"
            "3 things to look at.\n");
}

}  // namespace
}  // namespace watch
