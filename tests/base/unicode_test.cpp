#include "base/unicode.h"

#include "base/unicode_samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace quillpost::unicode {
namespace {

using namespace std::string_literals;

// Validity

TEST(IsValid, AcceptsEveryCodePointAndRefusesEverySurrogate) {
  for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    ASSERT_EQ(isValid(encoded(codePoint)), !isSurrogate) << std::hex << codePoint;
  }
}

TEST(Append, WritesEveryCodePoint) {
  for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
    std::string text = "x";
    append(text, static_cast<char32_t>(codePoint));
    ASSERT_EQ(text, "x" + encoded(codePoint)) << std::hex << codePoint;
  }
}

TEST(IsValid, RefusesWhatIsOverlongOutOfRangeOrCutOff) {
  struct Row {
    const char* name;
    std::string bytes;
  };
  for (const Row& row : {
           Row{"a lone continuation byte", "\x80"},
           Row{"the last continuation byte", "\xBF"},
           Row{"an overlong zero", "\xC0\x80"},
           Row{"an overlong slash", "\xC0\xAF"},
           Row{"overlong in two bytes", "\xC1\xBF"},
           Row{"overlong in three bytes", "\xE0\x9F\xBF"},
           Row{"overlong in four bytes", "\xF0\x8F\xBF\xBF"},
           Row{"the first beyond U+10FFFF", "\xF4\x90\x80\x80"},
           Row{"a lead byte beyond the range", "\xF5\x80\x80\x80"},
           Row{"five bytes", "\xF8\x88\x80\x80\x80"},
           Row{"FE", "\xFE"},
           Row{"FF", "\xFF"},
           Row{"one byte of two", "\xC3"},
           Row{"one byte of three", "\xE2"},
           Row{"two bytes of three", "\xE2\x82"},
           Row{"three bytes of four", "\xF0\x9F\x98"},
           Row{"a sequence cut off by a letter", "\xE2\x82z"},
           Row{"a sequence cut off by another", "\xE2\x82\xC3\xA9"},
           Row{"a paired surrogate", "\xED\xA0\xBD\xED\xB8\x80"},
       }) {
    SCOPED_TRACE(row.name);
    EXPECT_FALSE(isValid(row.bytes));
    // At every place relative to the eight bytes that are looked at together.
    for (std::size_t before = 0; before <= 17; ++before) {
      const std::string ascii(before, 'x');
      EXPECT_FALSE(isValid(ascii + row.bytes)) << before << " bytes before";
      EXPECT_FALSE(isValid(ascii + row.bytes + "0123456789abcdef")) << before << " bytes before";
      EXPECT_TRUE(isValid(ascii + "é" + ascii)) << before << " bytes around";
    }
  }
}

TEST(IsValid, AcceptsTheEmptyTextAndZeroBytes) {
  EXPECT_TRUE(isValid(""));
  EXPECT_TRUE(isValid("\0\0"s));
  EXPECT_TRUE(isValid("ASCII — Ünïcödé — 日本語 — 👩‍👩‍👧"));
}

// White space

TEST(Trim, TakesWhiteSpaceAndNewlinesFromBothEnds) {
  struct Row {
    std::string whole, trimmed;
  };
  for (const Row& row : {
           Row{"", ""},
           Row{" ", ""},
           Row{" \t\r\n\v\f ", ""},
           Row{"a", "a"},
           Row{" a ", "a"},
           Row{"\r\na b\r\n", "a b"},
           Row{"\u00A0\u1680a\u2000\u200A", "a"},
           Row{"\u2028\u2029\u0085é\u202F\u205F\u3000", "é"},
           Row{"\u3000\u3000", ""},
           Row{" 日 本 ", "日 本"},
           Row{"a\u0301 ", "a\u0301"},
           Row{"\0 a \0"s, "\0 a \0"s},
       }) {
    EXPECT_EQ(trim(row.whole), row.trimmed) << "of " << hex(row.whole);
  }
}

TEST(Trim, TakesExactlyTheNamedCodePoints) {
  const std::vector<uint32_t> white = {
      0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,   0xA0,   0x1680,
      0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008,
      0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000,
  };
  for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    const std::string character = encoded(codePoint);
    const bool isWhite = std::ranges::binary_search(white, codePoint);
    ASSERT_EQ(trim(character + "x" + character).size() == 1, isWhite) << std::hex << codePoint;
  }
}

TEST(TrimBlanks, TakesTabsAndSpacesButNoLineEnds) {
  const std::vector<uint32_t> blank = {
      0x09,   0x20,   0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
      0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x202F, 0x205F, 0x3000,
  };
  for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    const std::string character = encoded(codePoint);
    const bool isBlank = std::ranges::binary_search(blank, codePoint);
    ASSERT_EQ(trimBlanks(character + "x" + character).size() == 1, isBlank)
        << std::hex << codePoint;
  }
  EXPECT_EQ(trimBlanks(" \t a b\u3000\t"), "a b");
  EXPECT_EQ(trimBlanks(" \r\n "), "\r\n");
}

TEST(Trim, LeavesBytesThatAreNotUtf8) {
  for (const std::string& middle : {"\xFF"s, "\x80"s, "\x85"s, "\xA0"s, "\xC2"s, "\xE2\x80"s,
                                    "\x80\x80\x80\x80\x80"s, "a\xA0"s, "\xE3\x80"s, "\xC2 \xA0"s}) {
    EXPECT_EQ(trim(middle), middle) << hex(middle);
    EXPECT_EQ(trim(" " + middle + " "), middle) << hex(middle);
    EXPECT_EQ(trimBlanks("\u3000" + middle + "\u3000"), middle) << hex(middle);
  }
}

TEST(Trim, GivesAViewIntoTheWhole) {
  const std::string_view whole = "  ab  ";
  EXPECT_EQ(trim(whole).data(), whole.data() + 2);
}

TEST(Trim, ChangesNothingTheSecondTime) {
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    const std::string text = randomText(random);
    const std::string_view once = trim(text);
    ASSERT_EQ(trim(once), once) << hex(text);
    ASSERT_EQ(trim("\u2003" + text + "\r\n"), once) << hex(text);
    ASSERT_EQ(trim(trimBlanks(text)), once) << hex(text);
  }
}

// Case

TEST(EqualIgnoringCase, FoldsCaseFully) {
  struct Row {
    std::string a, b;
    bool equal;
  };
  for (const Row& row : {
           Row{"", "", true},
           Row{"", "a", false},
           Row{"Claude-Code", "cLAUDE-cODE", true},
           Row{"abc", "abd", false},
           Row{"abc", "ab", false},
           Row{"@", "`", false},
           Row{"[", "{", false},
           Row{"Z", "z", true},
           Row{"ÄÖÜ", "äöü", true},
           Row{"Straße", "STRASSE", true},
           Row{"ẞ", "ß", true},
           Row{"ΣΊΣΥΦΟΣ", "σίσυφος", true},
           Row{"\u212A", "k", true},
           Row{"K", "\u212A", true},
           Row{"ſ", "S", true},
           Row{"ﬃ", "FFI", true},
           Row{"\u0130", "i\u0307", true},
           Row{"\u0130", "i", false},
           Row{"ı", "I", false},
           Row{"é", "e", false},
           // Case alone is folded: different spellings of one character stay different.
           Row{"\u00E9", "e\u0301", false},
           Row{"ｋ", "k", false},
           Row{"A\0B"s, "a\0b"s, true},
           Row{"Ä\0B"s, "ä\0c"s, false},
       }) {
    SCOPED_TRACE(row.a + " and " + row.b);
    EXPECT_EQ(equalIgnoringCase(row.a, row.b), row.equal);
    EXPECT_EQ(equalIgnoringCase(row.b, row.a), row.equal);
  }
}

TEST(EqualIgnoringCase, ComparesWhatIsNotUtf8ByteByByte) {
  EXPECT_TRUE(equalIgnoringCase("a\xFF", "a\xFF"));
  EXPECT_FALSE(equalIgnoringCase("a\xFF", "A\xFF"));
  EXPECT_FALSE(equalIgnoringCase("\xFF", "\xFE"));
  EXPECT_FALSE(equalIgnoringCase("é", "\xC3"));
  EXPECT_FALSE(equalIgnoringCase("\xC3", "É"));
}

}  // namespace
}  // namespace quillpost::unicode
