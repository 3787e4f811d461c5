#include "harness/sections.h"

#include <gtest/gtest.h>

namespace quillpost::testing {
namespace {

constexpr std::string_view sample =
    "Guards the greeting.\n"
    "Two lines of it.\n"
    "-- env --\n"
    "NAME=value\n"
    "-- client --\n"
    "{\"a\":1}\n"
    "\n"
    "-- client --\n"
    "-- server said --\n"
    "-- not a header\n";

TEST(Sections, KeepProseNamesAndBodiesInOrder) {
  const SectionFile expected = {"Guards the greeting.\nTwo lines of it.\n",
                                {{"env", "NAME=value\n"},
                                 {"client", "{\"a\":1}\n\n"},
                                 {"client", ""},
                                 {"server said", "-- not a header\n"}}};
  EXPECT_EQ(parseSections(sample), expected);
}

TEST(Sections, ReadBackAsTheyWereWritten) {
  EXPECT_EQ(renderSections(parseSections(sample)), sample);
}

TEST(Sections, GiveTheFirstBodyOfANameAndNothingForAnUnknownOne) {
  const SectionFile file = parseSections(sample);
  EXPECT_EQ(file.body("client"), "{\"a\":1}\n\n");
  EXPECT_EQ(file.body("app"), "");
}

TEST(Sections, ATextWithoutHeadersIsAllProse) {
  EXPECT_EQ(parseSections("only --\n--  --\n-- a"), (SectionFile{"only --\n--  --\n-- a\n", {}}));
  EXPECT_EQ(parseSections(""), (SectionFile{}));
}

TEST(Sections, LinesLoseOnlyTheirLineFeeds) {
  EXPECT_EQ(linesOf("a\r\n\nb"), (std::vector<std::string>{"a\r", "", "b"}));
  EXPECT_TRUE(linesOf("").empty());
}

}  // namespace
}  // namespace quillpost::testing
