#include "mcp/line_splitter.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillpost {
namespace {

using Lines = std::vector<std::string>;

/// The lines of `whole` when it is fed `pieceBytes` at a time, the rest as the last of them.
Lines splitInPieces(std::string_view whole, std::size_t pieceBytes) {
  LineSplitter splitter;
  Lines lines;
  while (!whole.empty()) {
    splitter.feed(whole.substr(0, pieceBytes));
    while (const auto line = splitter.next()) lines.emplace_back(*line);
    whole.remove_prefix(std::min(pieceBytes, whole.size()));
  }
  if (const auto rest = splitter.rest()) lines.emplace_back(*rest);
  return lines;
}

TEST(LineSplitter, GivesTheSameLinesHoweverTheyArrive) {
  struct Row {
    std::string_view whole;
    Lines lines;
  };
  using namespace std::string_view_literals;
  for (const Row& row : {
           Row{"", {}},
           Row{"\n", {""}},
           Row{"\n\n", {"", ""}},
           Row{"a", {"a"}},
           Row{"a\n", {"a"}},
           Row{"a\nb", {"a", "b"}},
           Row{"a\n\nb\n", {"a", "", "b"}},
           Row{"a\r\nb\r", {"a\r", "b\r"}},
           Row{"one line\nand another one\nand a rest"sv,
               {"one line", "and another one", "and a rest"}},
           Row{"a\0b\n\xff\n\xe2\x80\xa6\n"sv, {std::string("a\0b", 3), "\xff", "\xe2\x80\xa6"}},
           Row{"a\xe2\x80\xa8\vb\fc\n", {"a\xe2\x80\xa8\vb\fc"}},
       }) {
    for (std::size_t pieceBytes = 1; pieceBytes <= row.whole.size() + 1; ++pieceBytes)
      EXPECT_EQ(splitInPieces(row.whole, pieceBytes), row.lines) << pieceBytes << " at a time";
  }
}

TEST(LineSplitter, GivesNothingUntilALineIsWhole) {
  LineSplitter splitter;
  EXPECT_EQ(splitter.next(), std::nullopt);
  splitter.feed("he");
  EXPECT_EQ(splitter.next(), std::nullopt);
  EXPECT_EQ(splitter.next(), std::nullopt);
  splitter.feed("llo\nre");
  EXPECT_EQ(splitter.next(), "hello");
  EXPECT_EQ(splitter.next(), std::nullopt);
  EXPECT_EQ(splitter.rest(), "re");
  EXPECT_EQ(splitter.rest(), std::nullopt) << "the rest is given once";
  splitter.feed("st\n");
  EXPECT_EQ(splitter.next(), "st") << "nothing of what was given comes back";
}

TEST(LineSplitter, DoesNotCopyALineThatArrivesWhole) {
  const std::string bytes = "first\nsecond\n";
  LineSplitter splitter;
  splitter.feed(bytes);
  const auto first = splitter.next();
  const auto second = splitter.next();
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->data(), bytes.data());
  EXPECT_EQ(second->data(), bytes.data() + 6);
}

TEST(LineSplitter, TakesLinesOfManyMegabytes) {
  const std::string huge(std::size_t{8} << 20, 'x');
  const Lines lines = splitInPieces(huge + "\nsmall\n" + huge, 65536);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_TRUE(lines[0] == huge);
  EXPECT_EQ(lines[1], "small");
  EXPECT_TRUE(lines[2] == huge);
}

TEST(LineSplitter, TakesAHundredThousandLinesAtOnce) {
  constexpr std::size_t count = 100'000;
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) bytes += std::to_string(i) + "\n";
  LineSplitter splitter;
  splitter.feed(bytes);
  std::size_t seen = 0;
  while (const auto line = splitter.next()) {
    ASSERT_EQ(*line, std::to_string(seen));
    ++seen;
  }
  EXPECT_EQ(seen, count);
  EXPECT_EQ(splitter.rest(), std::nullopt);
}

}  // namespace
}  // namespace quillpost
