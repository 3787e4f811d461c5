#include "json/writer.h"

#include "harness/integers.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

namespace quillpost::json {
namespace {

using testing::highest;
using testing::lowest;

std::string escaped(std::string_view text) {
  std::string out;
  appendEscaped(out, text);
  return out;
}

/// What `fill` puts into an object.
template <class Fill>
std::string objectOf(const Fill& fill) {
  std::string out;
  {
    Object object(out);
    fill(object);
  }
  return out;
}

template <class Fill>
std::string arrayOf(const Fill& fill) {
  std::string out;
  {
    Array array(out);
    fill(array);
  }
  return out;
}

/// The escape of every byte that has one; the others stand for themselves.
constexpr std::string_view escapes[] = {
    "\\u0000", "\\u0001", "\\u0002", "\\u0003", "\\u0004", "\\u0005", "\\u0006", "\\u0007",
    "\\b",     "\\t",     "\\n",     "\\u000b", "\\f",     "\\r",     "\\u000e", "\\u000f",
    "\\u0010", "\\u0011", "\\u0012", "\\u0013", "\\u0014", "\\u0015", "\\u0016", "\\u0017",
    "\\u0018", "\\u0019", "\\u001a", "\\u001b", "\\u001c", "\\u001d", "\\u001e", "\\u001f",
};

std::string escapeOf(char byte) {
  if (byte == '"') return "\\\"";
  if (byte == '\\') return "\\\\";
  const auto index = static_cast<unsigned char>(byte);
  return index < std::size(escapes) ? std::string(escapes[index]) : std::string(1, byte);
}

TEST(Escaping, GivesEveryAsciiByteItsOneForm) {
  for (int code = 0; code < 0x80; ++code) {
    const char byte = static_cast<char>(code);
    EXPECT_EQ(escaped(std::string(1, byte)), escapeOf(byte)) << "byte " << code;
  }
}

TEST(Escaping, FindsASpecialByteAtEveryPlaceOfARun) {
  for (int code = 0; code < 0x80; ++code) {
    const char byte = static_cast<char>(code);
    for (std::size_t size = 1; size <= 18; ++size) {
      for (std::size_t at = 0; at < size; ++at) {
        std::string text(size, 'x');
        text[at] = byte;
        const std::string expected =
            std::string(at, 'x') + escapeOf(byte) + std::string(size - at - 1, 'x');
        ASSERT_EQ(escaped(text), expected) << "byte " << code << " at " << at << " of " << size;
      }
    }
  }
}

TEST(Escaping, IsNotMisledByTheNeighboursOfASpecialByte) {
  // Bytes just above and below the special ones, behind one that borrows from them.
  for (const char neighbour : {' ', '!', '#', '[', ']', '\x7f'}) {
    for (const char special : {'\0', '\x1f', '"', '\\'}) {
      std::string text(16, neighbour);
      std::string expected(16, neighbour);
      for (const std::size_t at : {15U, 8U, 3U, 0U}) {
        text[at] = special;
        expected.replace(at, 1, escapeOf(special));
      }
      EXPECT_EQ(escaped(text), expected);
    }
  }
}

TEST(Escaping, TakesEveryByteOfALongRunOfSpecialOnes) {
  EXPECT_EQ(escaped(std::string(9, '\n')), "\\n\\n\\n\\n\\n\\n\\n\\n\\n");
  EXPECT_EQ(escaped("\"\\\"\\\"\\\"\\\""), "\\\"\\\\\\\"\\\\\\\"\\\\\\\"\\\\\\\"");
}

TEST(Escaping, LeavesUtf8AndSlashesAsTheyAre) {
  for (const std::string_view text :
       {"", "a/b", "é", "—…–", "日本語のテキスト", "😀😀😀", "ÿ\u0080", "\u2028\u2029", "\x7f"})
    EXPECT_EQ(escaped(text), text);
}

TEST(Escaping, AppendsToWhatIsThere) {
  std::string out = "\"";
  appendEscaped(out, "\t");
  EXPECT_EQ(out, "\"\\t");
}

TEST(Texts, StandInQuotes) {
  std::string out;
  appendString(out, "say \"hi\"");
  appendString(out, "");
  EXPECT_EQ(out, R"("say \"hi\"""")");
}

TEST(Integers, AreWrittenInDecimalAtBothEnds) {
  std::string out;
  for (const int64_t number : {lowest, int64_t{-1}, int64_t{0}, int64_t{1}, highest}) {
    appendInteger(out, number);
    out += ' ';
  }
  EXPECT_EQ(out, "-9223372036854775808 -1 0 1 9223372036854775807 ");
}

TEST(Objects, AreEmptyUntilSomethingIsAdded) {
  EXPECT_EQ(objectOf([](Object&) {}), "{}");
  EXPECT_EQ(arrayOf([](Array&) {}), "[]");
}

TEST(Objects, HoldTheirMembersInTheOrderOfAdding) {
  EXPECT_EQ(objectOf([](Object& object) {
              object.add("z", "last").add("a", 1).add("m", true).addNull("n");
            }),
            R"({"z":"last","a":1,"m":true,"n":null})");
}

TEST(Objects, TakeEveryKindOfTextAsAText) {
  const std::string owned = "owned";
  const char* const pointer = "pointer";
  char array[] = "array";
  EXPECT_EQ(objectOf([&](Object& object) {
              object.add("literal", "literal");
              object.add("owned", owned);
              object.add("view", std::string_view("view!").substr(0, 4));
              object.add("pointer", pointer);
              object.add("array", array);
              object.add("temporary", std::string("temp") + "orary");
            }),
            R"({"literal":"literal","owned":"owned","view":"view","pointer":"pointer",)"
            R"("array":"array","temporary":"temporary"})");
}

TEST(Objects, TakeIntegersOfEveryWidth) {
  EXPECT_EQ(objectOf([](Object& object) {
              object.add("a", int8_t{-128}).add("b", uint8_t{255}).add("c", int16_t{-7});
              object.add("d", 65535U).add("e", std::string("four").size());
              object.add("f", lowest).add("g", highest);
            }),
            R"({"a":-128,"b":255,"c":-7,"d":65535,"e":4,)"
            R"("f":-9223372036854775808,"g":9223372036854775807})");
}

/// Whether `object.add("key", value)` compiles for a value of this type.
template <class T>
concept Addable = requires(Object& object, T value) {
  object.add("key", value);
};

TEST(Objects, RefuseWhatWouldBeTakenForSomethingElse) {
  EXPECT_FALSE(Addable<char>) << "neither a text nor a number";
  EXPECT_FALSE(Addable<double>) << "no fraction is ever written";
  EXPECT_FALSE(Addable<const int*>) << "not a boolean";
  EXPECT_TRUE(Addable<bool>);
  EXPECT_TRUE(Addable<const char*>);
}

TEST(Objects, WriteListsOfTexts) {
  const std::vector<std::string> texts = {"a", "", "\""};
  EXPECT_EQ(objectOf([&](Object& object) {
              object.add("texts", texts);
              object.add("none", std::vector<std::string>());
              object.add("some", std::span(texts).last(2));
            }),
            R"({"texts":["a","","\""],"none":[],"some":["","\""]})");
}

/// One of each kind of value that may be missing.
struct Values {
  std::optional<std::string> text;
  std::optional<int64_t> number;
  std::optional<bool> flag;
  std::optional<std::vector<std::string>> texts;
};

std::string objectWith(const Values& values) {
  return objectOf([&](Object& object) {
    object.add("text", values.text).add("number", values.number);
    object.add("flag", values.flag).add("texts", values.texts);
  });
}

TEST(Objects, LeaveOutWhatHasNoValue) {
  EXPECT_EQ(objectWith({}), "{}");
  EXPECT_EQ(
      objectWith({.text = "", .number = 0, .flag = false, .texts = std::vector<std::string>()}),
      R"({"text":"","number":0,"flag":false,"texts":[]})");
}

TEST(Objects, AddAFlagOnlyWhenItIsSet) {
  EXPECT_EQ(objectOf([](Object& object) { object.addIf("no", false).addIf("yes", true); }),
            R"({"yes":true})");
}

TEST(Objects, AddATextOnlyWhenItIsThereAndNotEmpty) {
  const std::string empty, text = "text";
  const std::optional<std::string> none, someEmpty = empty, some = " ";
  EXPECT_EQ(objectOf([&](Object& object) {
              object.addText("a", "").addText("b", "text");
              object.addText("c", empty).addText("d", text);
              object.addText("e", none).addText("f", someEmpty).addText("g", some);
            }),
            R"({"b":"text","d":"text","g":" "})");
}

TEST(Objects, AddNullForWhatHasNoValue) {
  const std::optional<int64_t> none, some = 7;
  const std::optional<std::string> text = "x";
  EXPECT_EQ(objectOf([&](Object& object) {
              object.addOrNull("a", none).addOrNull("b", some).addOrNull("c", text);
            }),
            R"({"a":null,"b":7,"c":"x"})");
}

TEST(Objects, TakeJsonTextAsItStands) {
  EXPECT_EQ(
      objectOf([](Object& object) { object.addJson("a", R"({"b":[1.5]})").addJson("c", "null"); }),
      R"({"a":{"b":[1.5]},"c":null})");
}

TEST(Objects, CloseTheirChildrenBeforeThemselves) {
  std::string out = "before ";
  {
    Object top(out);
    top.add("first", 1);
    {
      Object child = top.object("child");
      child.object("empty");
      Object grandchild = child.object("grandchild");
      grandchild.add("deep", true);
    }
    {
      Array list = top.array("list");
      list.object();
      list.object().add("a", 1).add("b", 2);
      list.add("text").addJson("[0]");
    }
    top.array("nothing");
    top.add("last", "end");
  }
  EXPECT_EQ(out, R"(before {"first":1,"child":{"empty":{},"grandchild":{"deep":true}},)"
                 R"("list":[{},{"a":1,"b":2},"text",[0]],"nothing":[],"last":"end"})");
}

TEST(Objects, ListOneObjectForEachItem) {
  std::string out;
  const auto addNumber = [](Object& object, int number) { object.add("n", number); };
  appendObject(out, [&](Object& object) {
    object.list("some", std::vector<int>{1, 2}, addNumber)
        .list("none", std::vector<int>{}, addNumber);
    object.array("list", [](Array& list) { list.add("c"); });
  });
  EXPECT_EQ(out, R"({"some":[{"n":1},{"n":2}],"none":[],"list":["c"]})");
}

TEST(Arrays, ListOneObjectForEachItem) {
  std::string out;
  const auto addNumber = [](Object& object, int number) { object.add("n", number); };
  appendList(out, std::vector<int>{1, 2}, addNumber);
  appendList(out, std::vector<int>{}, addNumber);
  EXPECT_EQ(out, R"([{"n":1},{"n":2}][])");
}

TEST(Arrays, JoinATextFromTwoPieces) {
  EXPECT_EQ(arrayOf([](Array& array) {
              array.add("12: ", "a \"line\"").add("", "").add("\\", "\n").add("one");
            }),
            R"(["12: a \"line\"","","\\\n","one"])");
}

/// An object of every kind of member, holding `text` wherever a text can stand.
template <class Out>
void writeEverything(Out& out, const std::string& text) {
  json::Object object(out);
  object.add("text", text).add("flag", true).add("number", int64_t{-7}).addNull("nothing");
  object.add("list", std::vector<std::string>{text, "", text}).addJson("json", R"({"a":["b\\"]})");
  json::Array array = object.array("array");
  array.add(text).add("[x] ", text).addJson(R"("\n")");
  array.object().add("inner", text);
}

TEST(EscapedTexts, AreWhatEscapingTheFinishedTextWouldGive) {
  for (int first = 0; first < 128; ++first) {
    for (const std::string& text :
         {std::string(1, static_cast<char>(first)), "a" + std::string(9, static_cast<char>(first)),
          "\"\\é…\x1f" + std::string(1, static_cast<char>(first)) + "plain text behind it"}) {
      std::string plain = "before ";
      writeEverything(plain, text);
      plain += "\n\nafter \"" + text + "\"";

      json::EscapedText escaped("before ");
      writeEverything(escaped, text);
      escaped.append("\n\nafter \"").append(text).append("\"");

      std::string expected;
      json::appendEscaped(expected, plain);
      ASSERT_EQ(escaped.escaped(), expected) << "byte " << first;
    }
  }
}

TEST(Builders, CannotBeCopiedOrMoved) {
  EXPECT_FALSE(std::is_copy_constructible_v<Object>);
  EXPECT_FALSE(std::is_move_constructible_v<Object>);
  EXPECT_FALSE(std::is_copy_constructible_v<Array>);
  EXPECT_FALSE(std::is_move_constructible_v<Array>);
}

}  // namespace
}  // namespace quillpost::json
