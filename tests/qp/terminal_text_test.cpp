#include "qp/terminal_text.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

TEST(TerminalText, ShowsWhatWouldSteerTheTerminal) {
  EXPECT_EQ(withVisibleControls("a\x1b[2Jb\x07\x7f"), "a\u241b[2Jb\u2407\u2421");
  EXPECT_EQ(withVisibleControls("x\u009b1mx"), "x\uFFFD1mx");
  EXPECT_EQ(withVisibleControls("\u202Eabc\u2069"), "\uFFFDabc\uFFFD");
  EXPECT_EQ(withVisibleControls("\xff\xc3"), "\uFFFD\uFFFD");
}

TEST(TerminalText, LeavesEverythingElseAsItIs) {
  const std::string plain = "a\tb\n— é \U0001F469 \u00a0 {\"x\":1}";
  EXPECT_EQ(withVisibleControls(plain), plain);
  EXPECT_EQ(withVisibleControls(""), "");
}

TEST(TerminalText, IsPutInOneLine) {
  EXPECT_EQ(inOneLine("  a\n\n b\t\tc  "), "a b c");
  EXPECT_EQ(inOneLine("\n"), "");
  EXPECT_EQ(inOneLine("a\r\nb"), "a\u240d b");
}

}  // namespace
}  // namespace quillpost
