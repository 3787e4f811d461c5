#include "base/unicode.h"
#include "base/unicode_samples.h"
#include "harness/paths.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace quillpost::unicode {
namespace {

using namespace std::string_literals;

TEST(Characters, AreWhatAReaderSees) {
  struct Row {
    const char* name;
    std::string text;
    std::size_t count;
  };
  for (const Row& row : {
           Row{"nothing", "", 0},
           Row{"a letter", "a", 1},
           Row{"a word", "plain text, all ASCII", 21},
           Row{"an accent of its own code point", "é", 1},
           Row{"an accent after an ASCII letter", "e\u0301", 1},
           Row{"the same after many letters", "plain textie\u0301", 12},
           Row{"two accents", "e\u0301\u0302f", 2},
           Row{"an accent after a line feed", "\n\u0301", 2},
           Row{"an accent after CR LF", "\r\n\u0301", 2},
           Row{"an accent after a tab", "a\t\u0301", 3},
           Row{"an accent after a delete", "\x7F\u0301", 2},
           Row{"CR LF", "\r\n", 1},
           Row{"CR and LF apart", "\r \n", 3},
           Row{"LF CR", "\n\r", 2},
           Row{"CR CR LF LF", "\r\r\n\n", 3},
           Row{"CR before a letter beyond ASCII", "ab\ré", 4},
           Row{"three lines", "one\r\ntwo\nthree\r\n", 14},
           Row{"a family", "👩‍👩‍👧‍👦", 1},
           Row{"two flags", "🇩🇪🇫🇷", 2},
           Row{"half a flag more", "🇩🇪🇫", 2},
           Row{"a skin tone", "👍🏽", 1},
           Row{"a keycap", "1\uFE0F\u20E3", 1},
           Row{"Hangul jamo", "\u1112\u1161\u11AB", 1},
           Row{"Japanese", "日本語", 3},
           Row{"a mark that prepends itself", "\u06001", 1},
           Row{"bytes that are not UTF-8", "\xFF\xFE\x80", 3},
           Row{"a sequence cut off", "\xE2\x82", 2},
           Row{"an accent after a byte that is not UTF-8", "\xFF\u0301", 2},
           Row{"a letter before a byte that is not UTF-8",
               "a\xFF"
               "b",
               3},
           Row{"zero bytes", "\0\0"s, 2},
       }) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(countCharacters(row.text), row.count);
    EXPECT_EQ(firstCharacters(row.text, row.count), row.text);
    EXPECT_EQ(firstCharacters(row.text + "\n", row.count + 5), row.text + "\n");
  }
}

TEST(FirstCharacters, CutsBetweenCharacters) {
  struct Row {
    std::string whole;
    std::size_t count;
    std::string first;
  };
  for (const Row& row : {
           Row{"abc", 0, ""},
           Row{"abc", 2, "ab"},
           Row{"abc", 3, "abc"},
           Row{"abc", 4, "abc"},
           Row{"abc", static_cast<std::size_t>(-1), "abc"},
           Row{"abe\u0301f", 2, "ab"},
           Row{"abe\u0301f", 3, "abe\u0301"},
           Row{"ab\r\ncd", 2, "ab"},
           Row{"ab\r\ncd", 3, "ab\r\n"},
           Row{"ab\r\n", 3, "ab\r\n"},
           Row{"ab\r", 2, "ab"},
           Row{"日本語", 2, "日本"},
           Row{"👩‍👩‍👧 at home", 1, "👩‍👩‍👧"},
           Row{"🇩🇪🇫🇷", 1, "🇩🇪"},
           Row{"\xE2\x82z", 1, "\xE2"},
           Row{"\xE2\x82z", 2, "\xE2\x82"},
           Row{"é", 0, ""},
       }) {
    EXPECT_EQ(firstCharacters(row.whole, row.count), row.first)
        << row.count << " of " << hex(row.whole);
  }
}

/// The characters of one line of the consortium's data: "÷ 0020 × 0308 ÷ 0020 ÷".
std::vector<std::string> charactersOfLine(const std::string& line) {
  std::vector<std::string> characters;
  std::istringstream tokens(line);
  std::string token;
  bool startsCharacter = false;
  while (tokens >> token) {
    if (token == "÷" || token == "×") {
      startsCharacter = token == "÷";
      continue;
    }
    if (startsCharacter) characters.emplace_back();
    characters.back() += encoded(static_cast<uint32_t>(std::stoul(token, nullptr, 16)));
  }
  return characters;
}

TEST(Characters, AreThoseOfTheUnicodeConsortium) {
  std::ifstream data(testing::inTests("base/data/GraphemeBreakTest.txt"));
  std::size_t linesRun = 0;
  for (std::string line; std::getline(data, line);) {
    const std::vector<std::string> characters = charactersOfLine(line.substr(0, line.find('#')));
    if (characters.empty()) continue;
    ++linesRun;
    std::string whole;
    for (const std::string& character : characters) whole += character;
    // This edition of the data holds no surrogate, which UTF-8 could not express.
    ASSERT_TRUE(isValid(whole)) << line;
    EXPECT_EQ(countCharacters(whole), characters.size()) << line;
    std::string first;
    for (std::size_t count = 0; count <= characters.size(); ++count) {
      EXPECT_EQ(firstCharacters(whole, count), first) << count << " of " << line;
      if (count < characters.size()) first += characters[count];
    }
  }
  EXPECT_EQ(linesRun, 602u);
}

/// Where each character ends, found without any short cut: one state for the whole text, which is
/// only set back where bytes are not UTF-8.
std::vector<std::size_t> characterEnds(std::string_view whole) {
  std::vector<std::size_t> ends;
  utf8proc_int32_t state = 0, last = -1;
  for (std::size_t at = 0; at < whole.size();) {
    utf8proc_int32_t next = -1;
    const utf8proc_ssize_t length =
        utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(whole.data()) + at,
                         static_cast<utf8proc_ssize_t>(whole.size() - at), &next);
    const bool readable = length > 0;
    if (!readable || last < 0) {
      if (at > 0) ends.push_back(at);
      state = 0;
    } else if (utf8proc_grapheme_break_stateful(last, next, &state)) {
      ends.push_back(at);
    }
    last = readable ? next : -1;
    at += readable ? static_cast<std::size_t>(length) : 1;
  }
  if (!whole.empty()) ends.push_back(whole.size());
  return ends;
}

TEST(Characters, AreTheSameWithAndWithoutShortCuts) {
  std::mt19937 random(2);
  for (int round = 0; round < 20000; ++round) {
    const std::string text = randomText(random);
    const std::vector<std::size_t> ends = characterEnds(text);
    ASSERT_EQ(countCharacters(text), ends.size()) << hex(text);
    for (std::size_t count = 1; count <= ends.size(); ++count) {
      ASSERT_EQ(firstCharacters(text, count), text.substr(0, ends[count - 1]))
          << count << " of " << hex(text);
    }
  }
}

TEST(Unicode, TakesAnyBytes) {
  std::mt19937 random(3);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes(random() % 40, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    const std::size_t count = countCharacters(bytes);
    ASSERT_EQ(firstCharacters(bytes, count), bytes) << hex(bytes);
    ASSERT_EQ(countCharacters(firstCharacters(bytes, count / 2)), count / 2) << hex(bytes);
    ASSERT_EQ(trim(" " + bytes + " "), trim(bytes)) << hex(bytes);
    ASSERT_TRUE(equalIgnoringCase(bytes, bytes)) << hex(bytes);
    ASSERT_EQ(equalIgnoringCase(bytes, bytes + "x"), false) << hex(bytes);
    ASSERT_EQ(isValid(bytes + "\xFF"), false) << hex(bytes);
  }
}

TEST(Characters, CostNoMoreThanTheirLength) {
  // Were any of these quadratic in the length of the text, the test would not come to an end.
  constexpr std::size_t million = 1'000'000;
  EXPECT_EQ(countCharacters(std::string(million, 'a')), million);
  EXPECT_EQ(countCharacters(repeated("\r\n", million)), million);
  EXPECT_EQ(countCharacters(std::string(million, '\r')), million);
  EXPECT_EQ(countCharacters(repeated("a\u0301", million)), million);
  EXPECT_EQ(countCharacters("a" + repeated("\u0301", million)), 1u);
  EXPECT_EQ(countCharacters(std::string(million, '\xFF')), million);
  EXPECT_EQ(countCharacters(repeated("\U0001F1E6", million)), million / 2);
  EXPECT_EQ(firstCharacters("a" + repeated("\u0301", million) + "bc", 2).size(), 2 * million + 2);
  EXPECT_EQ(firstCharacters(repeated("\r\n", million), million - 1).size(), 2 * million - 2);
  EXPECT_EQ(trim(repeated("\u3000", million)).size(), 0u);
  EXPECT_EQ(trim("x" + repeated("\u3000", million)).size(), 1u);
  EXPECT_EQ(trim(std::string(million, '\x80')).size(), million);
}

}  // namespace
}  // namespace quillpost::unicode
