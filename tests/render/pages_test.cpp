#include "render/pages.h"

#include "harness/golden.h"
#include "harness/integers.h"
#include "json/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::highest;
using testing::lowest;
using testing::sameText;

/// "1", "2" and so on.
std::vector<std::string> counted(int count) {
  std::vector<std::string> lines;
  for (int number = 1; number <= count; ++number) lines.push_back(std::to_string(number));
  return lines;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string out;
  for (const std::string& line : lines) {
    if (&line != &lines.front()) out += "\n";
    out += line;
  }
  return out;
}

struct BodyRow {
  std::string name;
  std::string body;
  Page page;
  std::string shown;
};

void expectBodies(const std::vector<BodyRow>& rows) {
  for (const BodyRow& row : rows) {
    EXPECT_TRUE(sameText(row.shown, numberedBody(row.body, row.page))) << row.name;
  }
}

TEST(NumberedBody, LinesEndAtLineFeedsAndAreNumberedFromOne) {
  expectBodies({
      {"one line", "a", {}, "1\ta"},
      {"two lines", "a\nb", {}, "1\ta\n2\tb"},
      {"a line feed at the end", "a\nb\n", {}, "1\ta\n2\tb"},
      {"two line feeds at the end", "a\n\n", {}, "1\ta\n2\t"},
      {"an empty line first", "\na", {}, "1\t\n2\ta"},
      {"two empty lines", "\n\n", {}, "1\t\n2\t"},
      {"only blanks", "  ", {}, "1\t  "},
      {"carriage returns belong to their lines", "a\r\nb\r\n", {}, "1\ta\r\n2\tb\r"},
      {"other line separators do not count", "a\u2028b\vc", {}, "1\ta\u2028b\vc"},
  });
}

TEST(NumberedBody, ABodyWithoutALineIsCalledEmpty) {
  expectBodies({
      {"empty", "", {}, "(empty)"},
      {"a line feed", "\n", {}, "(empty)"},
      {"a page of nothing", "", {.offset = 5, .limit = 3}, "(empty)"},
  });
}

TEST(NumberedBody, APagePastTheEndSaysSo) {
  expectBodies({
      {"two lines", "a\nb", {.offset = 5}, "(offset 5 is past the last line — this has 2 lines.)"},
      {"a line feed at the end",
       "a\nb\n",
       {.offset = 3, .limit = 9},
       "(offset 3 is past the last line — this has 2 lines.)"},
      {"one line", "a", {.offset = 2}, "(offset 2 is past the last line — this has 1 line.)"},
      {"the highest offset",
       "a",
       {.offset = highest, .limit = highest},
       "(offset 9223372036854775807 is past the last line — this has 1 line.)"},
  });
}

TEST(NumberedBody, APageThatIsNotTheWholeHasAFoot) {
  const std::string twelve = joined(counted(12));
  expectBodies({
      {"the first five",
       twelve,
       {.limit = 5},
       "1\t1\n2\t2\n3\t3\n4\t4\n5\t5\n\n(Lines 1–5 of 12. Pass offset=6 to continue.)"},
      {"from the middle to the end",
       twelve,
       {.offset = 9},
       " 9\t9\n10\t10\n11\t11\n12\t12\n\n(Lines 9–12 of 12.)"},
      {"within",
       twelve,
       {.offset = 9, .limit = 2},
       " 9\t9\n10\t10\n\n(Lines 9–10 of 12. Pass offset=11 to continue.)"},
      {"the last line", twelve, {.offset = 12}, "12\t12\n\n(Lines 12–12 of 12.)"},
      {"exactly to the end", "a\nb", {.offset = 1, .limit = 2}, "1\ta\n2\tb"},
      {"one short of the end",
       "a\nb",
       {.limit = 1},
       "1\ta\n\n(Lines 1–1 of 2. Pass offset=2 to continue.)"},
  });
}

TEST(NumberedBody, AnyOffsetAndLimitWillDo) {
  const std::string whole = "1\ta\n2\tb\n3\tc";
  const std::string firstLine = "1\ta\n\n(Lines 1–1 of 3. Pass offset=2 to continue.)";
  const std::string fromSecond = "2\tb\n3\tc\n\n(Lines 2–3 of 3.)";
  expectBodies({
      {"the lowest offset", "a\nb\nc", {.offset = lowest}, whole},
      {"offset -1", "a\nb\nc", {.offset = -1}, whole},
      {"offset 0", "a\nb\nc", {.offset = 0}, whole},
      {"offset 1", "a\nb\nc", {.offset = 1}, whole},
      {"offset 2", "a\nb\nc", {.offset = 2}, fromSecond},
      {"the lowest limit", "a\nb\nc", {.limit = lowest}, firstLine},
      {"limit -1", "a\nb\nc", {.limit = -1}, firstLine},
      {"limit 0", "a\nb\nc", {.limit = 0}, firstLine},
      {"limit 1", "a\nb\nc", {.limit = 1}, firstLine},
      {"the highest limit", "a\nb\nc", {.limit = highest}, whole},
      {"the highest limit from 2", "a\nb\nc", {.offset = 2, .limit = highest}, fromSecond},
      {"the lowest of both", "a\nb\nc", {.offset = lowest, .limit = lowest}, firstLine},
      {"the highest limit, the lowest offset",
       "a\nb\nc",
       {.offset = lowest, .limit = highest},
       whole},
  });
}

TEST(NumberedBody, APageHas2000LinesUnlessToldOtherwise) {
  EXPECT_EQ(numberedBody(joined(counted(2000)), {}).find("(Lines"), std::string::npos);
  const std::string page = numberedBody(joined(counted(2001)), {});
  EXPECT_TRUE(page.starts_with("   1\t1\n   2\t2\n"));
  EXPECT_TRUE(
      page.ends_with("\n2000\t2000\n\n(Lines 1–2000 of 2001. Pass offset=2001 to continue.)"));
}

TEST(NumberedBody, ALineIsCutTo2000Characters) {
  const auto repeated = [](std::string_view piece, int times) {
    std::string out;
    for (; times > 0; --times) out += piece;
    return out;
  };
  const std::string limit(2000, 'x');
  expectBodies({
      {"at the limit", limit + "\nb", {}, "1\t" + limit + "\n2\tb"},
      {"one more", limit + "y\nb", {}, "1\t" + limit + "…\n2\tb"},
      {"a carriage return is one more", limit + "\r\nb", {}, "1\t" + limit + "…\n2\tb"},
      {"2000 characters of two bytes", repeated("ä", 2000), {}, "1\t" + repeated("ä", 2000)},
      {"one more of two bytes", repeated("ä", 2001), {}, "1\t" + repeated("ä", 2000) + "…"},
      {"2000 letters with a mark",
       repeated("e\u0301", 2000),
       {},
       "1\t" + repeated("e\u0301", 2000)},
      {"one more letter with a mark",
       repeated("e\u0301", 2001),
       {},
       "1\t" + repeated("e\u0301", 2000) + "…"},
      {"one character of many bytes",
       repeated("\u0301", 3000),
       {},
       "1\t" + repeated("\u0301", 3000)},
  });
}

TEST(NumberedBody, PagesReadInTurnGiveEveryLineOnce) {
  std::mt19937 random(7);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::string> lines = counted(1 + static_cast<int>(random() % 40));
    for (std::string& line : lines) {
      if (random() % 4 == 0) line.clear();
    }
    // The last line must not be empty, or it would be taken for the end of the one before.
    lines.back() = "end";
    const int64_t limit = 1 + static_cast<int64_t>(random() % 12);
    std::vector<std::string> seen;
    int64_t pages = 0;
    for (int64_t offset = 1; offset <= static_cast<int64_t>(lines.size()); offset += limit) {
      const std::string page = numberedBody(joined(lines), {.offset = offset, .limit = limit});
      std::string_view rest = std::string_view(page).substr(0, page.find("\n\n("));
      for (bool more = true; more;) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        EXPECT_EQ(std::stoul(std::string(line)), seen.size() + 1) << page;
        seen.emplace_back(line.substr(line.find('\t') + 1));
        more = end < rest.size();
        rest.remove_prefix(more ? end + 1 : end);
      }
      ++pages;
    }
    EXPECT_EQ(seen, lines);
    EXPECT_EQ(pages, (static_cast<int64_t>(lines.size()) + limit - 1) / limit);
  }
}

std::string logPage(const std::vector<std::string>& log, const Page& page) {
  std::string out;
  {
    json::Array list(out);
    addLogPage(list, log, page);
  }
  return out;
}

/// The page as it should be: perhaps the line about earlier lines, then the lines from `first` to
/// `last`, whose texts are their numbers.
std::string expectedLogPage(const std::string& earlier, int first, int last) {
  std::string out = "[";
  if (!earlier.empty()) out += "\"" + earlier + "\"";
  for (int number = first; number <= last; ++number) {
    if (out.size() > 1) out += ",";
    out += "\"" + std::to_string(number) + "\"";
  }
  return out + "]";
}

struct LogRow {
  std::string name;
  int lineCount;
  Page page;
  std::string earlier;
  int first;
  int last;
};

void expectLogPages(const std::vector<LogRow>& rows) {
  for (const LogRow& row : rows) {
    EXPECT_TRUE(sameText(expectedLogPage(row.earlier, row.first, row.last),
                         logPage(counted(row.lineCount), row.page)))
        << row.name;
  }
}

TEST(LogPage, TheLatestLinesAreShownUnlessAnOffsetIsGiven) {
  expectLogPages({
      {"forty lines",
       40,
       {},
       "(10 earlier lines omitted — pass logOffset=1 to read the log from the top.)",
       11,
       40},
      {"thirty lines", 30, {}, "", 1, 30},
      {"one more",
       31,
       {},
       "(1 earlier line omitted — pass logOffset=1 to read the log from the top.)",
       2,
       31},
      {"a limit",
       5,
       {.limit = 2},
       "(3 earlier lines omitted — pass logOffset=1 to read the log from the top.)",
       4,
       5},
      {"a limit of all", 5, {.limit = 5}, "", 1, 5},
      {"an offset of 1", 40, {.offset = 1}, "", 1, 30},
      {"an offset of 2",
       40,
       {.offset = 2},
       "(1 earlier line omitted — pass logOffset=1 to read the log from the top.)",
       2,
       31},
      {"an offset near the end",
       40,
       {.offset = 38},
       "(37 earlier lines omitted — pass logOffset=1 to read the log from the top.)",
       38,
       40},
      {"the last line",
       3,
       {.offset = 3},
       "(2 earlier lines omitted — pass logOffset=1 to read the log from the top.)",
       3,
       3},
      {"past the end",
       3,
       {.offset = 4},
       "(3 earlier lines omitted — pass logOffset=1 to read the log from the top.)",
       1,
       0},
      {"an offset and a limit",
       9,
       {.offset = 3, .limit = 2},
       "(2 earlier lines omitted — pass logOffset=1 to read the log from the top.)",
       3,
       4},
  });
}

TEST(LogPage, AnyOffsetAndLimitWillDo) {
  const std::string two =
      "(2 earlier lines omitted — pass logOffset=1 to read the log from the top.)";
  const std::string three =
      "(3 earlier lines omitted — pass logOffset=1 to read the log from the top.)";
  const std::string one =
      "(1 earlier line omitted — pass logOffset=1 to read the log from the top.)";
  expectLogPages({
      {"the lowest offset", 3, {.offset = lowest}, "", 1, 3},
      {"offset -1", 3, {.offset = -1}, "", 1, 3},
      {"offset 0", 3, {.offset = 0}, "", 1, 3},
      {"offset 1", 3, {.offset = 1}, "", 1, 3},
      {"the highest offset", 3, {.offset = highest}, three, 1, 0},
      {"the lowest limit", 3, {.limit = lowest}, two, 3, 3},
      {"limit -1", 3, {.limit = -1}, two, 3, 3},
      {"limit 0", 3, {.limit = 0}, two, 3, 3},
      {"limit 1", 3, {.limit = 1}, two, 3, 3},
      {"the highest limit", 3, {.limit = highest}, "", 1, 3},
      {"the highest of both", 3, {.offset = highest, .limit = highest}, three, 1, 0},
      {"the highest limit from 2", 3, {.offset = 2, .limit = highest}, one, 2, 3},
      {"the lowest of both", 3, {.offset = lowest, .limit = lowest}, "", 1, 1},
      {"the highest limit, the lowest offset", 3, {.offset = lowest, .limit = highest}, "", 1, 3},
  });
}

TEST(LogPage, AnEmptyLogGivesNothing) {
  EXPECT_EQ(logPage({}, {}), "[]");
  EXPECT_EQ(logPage({}, {.offset = 4, .limit = 2}), "[]");
}

TEST(LogPage, LinesAreShownAsTheyAreMarkersIncluded) {
  EXPECT_EQ(logPage({"[[gist]] a", "", "say \"b\"\n", "[[for]] c"}, {}),
            R"(["[[gist]] a","","say \"b\"\n","[[for]] c"])");
}

TEST(LogPage, AnyPageIsJsonOfAtMostItsLimit) {
  std::mt19937 random(11);
  for (int round = 0; round < 500; ++round) {
    const int lineCount = static_cast<int>(random() % 50);
    Page page;
    if (random() % 2 == 0) page.offset = static_cast<int64_t>(random() % 70) - 10;
    if (random() % 2 == 0) page.limit = static_cast<int64_t>(random() % 50) - 5;
    const std::string text = logPage(counted(lineCount), page);
    const std::optional<json::Tree> tree = json::parse(text);
    ASSERT_TRUE(tree && tree->is_array()) << text;
    const bool isCut = text.starts_with("[\"(");
    const int64_t shown = static_cast<int64_t>(tree->get_array().size()) - (isCut ? 1 : 0);
    EXPECT_LE(shown, std::max<int64_t>(page.limit.value_or(30), 1)) << text;
    // Either the first line is there, or it is said that it is not.
    EXPECT_EQ(isCut, lineCount > 0 && !text.starts_with("[\"1\"")) << text;
  }
}

}  // namespace
}  // namespace quillpost
