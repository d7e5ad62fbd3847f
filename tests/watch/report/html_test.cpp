#include "report/html.h"

#include <gtest/gtest.h>

#include <string>

namespace watch {
namespace {

TEST(Html, EscapesTextWhereverItStands) {
  const std::string hostile = "<script>alert(\"1\" & '2')</script>";
  const std::string shown = "&lt;script&gt;alert(&quot;1&quot; &amp; &#39;2&#39;)&lt;/script&gt;";

  EXPECT_EQ(Html(hostile).source(), shown);
  EXPECT_EQ(el("td", {}, hostile).source(), "<td>" + shown + "</td>");
  EXPECT_EQ(el("td", {{"title", hostile}}).source(), "<td title=\"" + shown + "\"></td>");
  EXPECT_EQ(shape("path", {{"d", hostile}}).source(), "<path d=\"" + shown + "\"/>");
}

TEST(Html, EscapesNothingTwice) {
  const Html text = "1 < 2";

  EXPECT_EQ(el("p", {}, {el("b", {}, text), " & more"}).source(),
            "<p><b>1 &lt; 2</b> &amp; more</p>");
}

TEST(Html, KeepsTheOrderOfPieces) {
  Html page = {"a", el("i", {{"class", "x"}, {"id", "y"}}), "b"};
  page += "c";

  EXPECT_EQ(page.source(), "a<i class=\"x\" id=\"y\"></i>bc");
}

TEST(Html, LeavesOutAttributesWithoutAValue) {
  EXPECT_EQ(el("p", {{"class", ""}, {"id", "a"}}, "").source(), "<p id=\"a\"></p>");
}

TEST(Html, KeepsBytesOfOtherLanguages) {
  EXPECT_EQ(Html("größer → 90 %").source(), "größer → 90 %");
}

}  // namespace
}  // namespace watch
