#include "json/decoder.h"

#include "harness/integers.h"

#include <gtest/gtest.h>

namespace quillpost::json {
namespace {

using testing::highest;
using testing::lowest;

enum class Colour { red, green };

struct Leaf {
  std::string name;
  int64_t size = 7;

  bool operator==(const Leaf&) const = default;

  static constexpr auto fields() {
    return std::tuple{required("name", &Leaf::name), defaulted("size", &Leaf::size)};
  }
};

struct Plant {
  std::string text = "default";
  int64_t number = 1;
  bool flag = true;
  Colour colour = Colour::green;
  Leaf leaf;
  std::vector<std::string> texts;
  std::vector<Leaf> leaves;
  std::optional<std::string> maybeText;
  std::optional<Leaf> maybeLeaf;
  std::optional<std::vector<std::string>> maybeTexts;

  bool operator==(const Plant&) const = default;

  static constexpr auto fields() {
    return std::tuple{
        defaulted("text", &Plant::text),          defaulted("number", &Plant::number),
        defaulted("flag", &Plant::flag),          defaulted("colour", &Plant::colour),
        defaulted("leaf", &Plant::leaf),          defaulted("texts", &Plant::texts),
        defaulted("leaves", &Plant::leaves),      optional("maybeText", &Plant::maybeText),
        optional("maybeLeaf", &Plant::maybeLeaf), optional("maybeTexts", &Plant::maybeTexts)};
  }
};

}  // namespace

template <>
struct Names<Colour> {
  static constexpr std::array rows = {
      Name<Colour>{Colour::red, "red"},
      Name<Colour>{Colour::green, "green"},
  };
};

namespace {

std::optional<Plant> plant(std::string_view text) { return decode<Plant>(std::string(text)); }

/// The plant whose one member "number" is written as `number`.
std::optional<int64_t> numberFrom(std::string_view number) {
  const std::optional<Plant> read = plant("{\"number\":" + std::string(number) + "}");
  return read ? std::optional(read->number) : std::nullopt;
}

/// The plant whose one member "text" is written as `text`, quotes included.
std::optional<std::string> textFrom(std::string_view text) {
  const std::optional<Plant> read = plant("{\"text\":" + std::string(text) + "}");
  return read ? std::optional(read->text) : std::nullopt;
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string out;
  out.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) out += piece;
  return out;
}

TEST(Decoding, TakesEveryKindOfMember) {
  const std::optional<Plant> read =
      plant(R"({"text":"t","number":-5,"flag":false,"colour":"red","leaf":{"name":"a","size":2},)"
            R"("texts":["x","","y"],"leaves":[{"name":"b"},{"size":0,"name":"c"}],)"
            R"("maybeText":"m","maybeLeaf":{"name":"d"},"maybeTexts":["z"]})");
  ASSERT_TRUE(read);
  Plant expected;
  expected.text = "t";
  expected.number = -5;
  expected.flag = false;
  expected.colour = Colour::red;
  expected.leaf = {"a", 2};
  expected.texts = {"x", "", "y"};
  expected.leaves = {{"b", 7}, {"c", 0}};
  expected.maybeText = "m";
  expected.maybeLeaf = Leaf{"d", 7};
  expected.maybeTexts = std::vector<std::string>{"z"};
  EXPECT_EQ(*read, expected);
}

TEST(Decoding, TakesMembersInAnyOrder) {
  const std::optional<Plant> read = plant(R"({"maybeText":"m","flag":false,"text":"t"})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->maybeText, "m");
  EXPECT_FALSE(read->flag);
  EXPECT_EQ(read->text, "t");
  EXPECT_EQ(decode<Leaf>(R"({"size":1,"name":"n"})"), (Leaf{"n", 1}));
}

TEST(Presence, LeavesDefaultsWhereNothingCame) { EXPECT_EQ(plant("{}"), Plant{}); }

TEST(Presence, CountsANullAsMissing) {
  EXPECT_EQ(plant(R"({"text":null,"number":null,"flag":null,"colour":null,"leaf":null,)"
                  R"("texts":null,"leaves":null,"maybeText":null,"maybeLeaf":null,)"
                  R"("maybeTexts":null})"),
            Plant{});
  EXPECT_EQ(decode<Leaf>(R"({"name":"n","size":null})"), (Leaf{"n", 7}));
}

TEST(Presence, FailsWithoutARequiredKeyAtAnyDepth) {
  for (const std::string_view text :
       {R"({"leaf":{}})", R"({"leaf":{"size":1}})", R"({"leaf":{"name":null}})",
        R"({"leaves":[{"name":"a"},{}]})", R"({"maybeLeaf":{"size":3}})",
        R"({"leaf":{"Name":"a"}})", R"({"leaf":{"name ":"a"}})", R"({"leaf":{"":"a"}})"})
    EXPECT_EQ(plant(text), std::nullopt) << text;
  EXPECT_EQ(decode<Leaf>("{}"), std::nullopt);
  EXPECT_EQ(decode<Leaf>(R"({"name":null})"), std::nullopt);
}

TEST(Presence, TellsAnEmptyValueFromNone) {
  const std::optional<Plant> read = plant(R"({"maybeText":"","maybeTexts":[]})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->maybeText, "");
  EXPECT_EQ(read->maybeTexts, std::vector<std::string>());
}

TEST(Types, FailWhenWrongAtAnyDepth) {
  for (const std::string_view text : {
           R"({"text":1})",
           R"({"text":true})",
           R"({"text":[]})",
           R"({"text":{}})",
           R"({"number":"1"})",
           R"({"number":[]})",
           R"({"number":{}})",
           R"({"flag":1})",
           R"({"flag":0})",
           R"({"flag":"true"})",
           R"({"flag":[true]})",
           R"({"flag":{}})",
           R"({"colour":"blue"})",
           R"({"colour":""})",
           R"({"colour":"Red"})",
           R"({"colour":0})",
           R"({"leaf":"name"})",
           R"({"leaf":[]})",
           R"({"leaf":true})",
           R"({"leaf":{"name":1}})",
           R"({"leaf":{"name":"a","size":"b"}})",
           R"({"texts":"a"})",
           R"({"texts":{}})",
           R"({"texts":["a",1]})",
           R"({"texts":["a",null]})",
           R"({"texts":[["a"]]})",
           R"({"texts":[{}]})",
           R"({"leaves":{"name":"a"}})",
           R"({"leaves":["a"]})",
           R"({"leaves":[null]})",
           R"({"leaves":[[]]})",
           R"({"leaves":[{"name":"a","size":true}]})",
           R"({"maybeText":1})",
           R"({"maybeLeaf":"a"})",
           R"({"maybeLeaf":{"name":[]}})",
           R"({"maybeTexts":[1]})",
       })
    EXPECT_EQ(plant(text), std::nullopt) << text;
}

TEST(Types, AreThoseOfAnObjectAtTheTop) {
  for (const std::string_view text : {"[]", "[{}]", "null", "true", "1", "1.5", "\"text\"", "\"\""})
    EXPECT_EQ(plant(text), std::nullopt) << text;
}

TEST(UnknownKeys, ArePassedOverWhateverTheyHold) {
  for (const std::string_view value : {
           "null",
           "true",
           "false",
           "0",
           "-1",
           "18446744073709551615",
           "99999999999999999999",
           "1.5e10",
           "1e-400",
           R"("text")",
           R"("\u00e9\n\"\ud83d\ude00")",
           "[]",
           "{}",
           R"([null,true,1,2.5,"a",[],{},[[["deep"]]]])",
           R"({"text":1,"leaf":{"name":null},"x":[{"text":[]}],"":{}})",
           R"([{"a":[{"b":[{"c":{}}]}]}])",
       }) {
    const std::string unknown = std::string("\"unknown\":") + std::string(value);
    const std::string text = "{" + unknown + R"(,"text":"a",)" + unknown + R"(,"leaf":{)" +
                             unknown + R"(,"name":"b",)" + unknown + R"(},"leaves":[{"name":"c",)" +
                             unknown + "}]," + unknown + "}";
    const std::optional<Plant> read = plant(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(read->text, "a");
    EXPECT_EQ(read->leaf.name, "b");
    EXPECT_EQ(read->leaves, (std::vector<Leaf>{{"c", 7}}));
  }
}

TEST(UnknownKeys, MustStillBeJson) {
  for (const std::string_view value :
       {"", "tru", "01", "1.", "\"\\x\"", "[1,]", "{\"a\"}", "[}", "1e400", "[{\"a\":-1e400}]",
        "0e99999999999", "1e-99999999999", "\"\\ud800\"", "\"\x80\""}) {
    const std::string text = R"({"unknown":)" + std::string(value) + R"(,"text":"a"})";
    EXPECT_EQ(plant(text), std::nullopt) << text;
  }
}

TEST(Integers, MayBeWrittenInAnyFormThatIsIntegral) {
  struct Row {
    std::string_view text;
    std::optional<int64_t> number;
  };
  for (const Row& row : {
           Row{"0", 0},
           Row{"-0", 0},
           Row{"-0.0", 0},
           Row{"3.0", 3},
           Row{"3e2", 300},
           Row{"3E+2", 300},
           Row{"300e-2", 3},
           Row{"1.5e1", 15},
           Row{"0e400", 0},
           Row{"9223372036854775807", highest},
           Row{"-9223372036854775808", lowest},
           Row{"-9223372036854775808.0", lowest},
           Row{"9007199254740993", 9007199254740993},
           Row{"9007199254740993.0", 9007199254740993},
           Row{"9.007199254740993e15", 9007199254740993},
           Row{"900719925474099300e-2", 9007199254740993},
           Row{"9223372036854775807.0", highest},
           Row{"922337203685477580.7e1", highest},
           Row{"9223372036854775808.0", std::nullopt},
           Row{"-9223372036854775809.0", std::nullopt},
           Row{"0.99999999999999999999", std::nullopt},
           Row{"3.00000000000000000001", std::nullopt},
           Row{"1e-400", std::nullopt},
           Row{"0.0e-400", 0},
           Row{"0e2147483647", 0},
           Row{"0e2147483648", std::nullopt},
           Row{"0e-2147483649", std::nullopt},
           Row{"3.5", std::nullopt},
           Row{"-0.5", std::nullopt},
           Row{"5e-1", std::nullopt},
           Row{"9223372036854775808", std::nullopt},
           Row{"-9223372036854775809", std::nullopt},
           Row{"18446744073709551615", std::nullopt},
           Row{"18446744073709551616", std::nullopt},
           Row{"-9223372036854775809000", std::nullopt},
           Row{"1e19", std::nullopt},
           Row{"-1e19", std::nullopt},
           Row{"1e300", std::nullopt},
           Row{"1e400", std::nullopt},
           Row{"-1e400", std::nullopt},
           Row{"1e99999999999", std::nullopt},
           Row{"true", std::nullopt},
           Row{"false", std::nullopt},
           Row{"+1", std::nullopt},
           Row{"01", std::nullopt},
           Row{"1.", std::nullopt},
           Row{".5", std::nullopt},
           Row{"-", std::nullopt},
           Row{"1e", std::nullopt},
           Row{"0x10", std::nullopt},
           Row{"NaN", std::nullopt},
           Row{"Infinity", std::nullopt},
       })
    EXPECT_EQ(numberFrom(row.text), row.number) << row.text;
}

TEST(Strings, AreUnescaped) {
  struct Row {
    std::string_view json, text;
  };
  using namespace std::string_view_literals;
  for (const Row& row : {
           Row{R"("")", ""},
           Row{R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
           Row{R"("\u0041\u00e9\u2014\uD83D\uDE00")", "Aé—😀"},
           Row{R"("a\u0000b")", "a\0b"sv},
           Row{R"("é—😀")", "é—😀"},
           Row{R"("\nplain\nplain")", "\nplain\nplain"},
           Row{R"("plain\n")", "plain\n"},
           Row{R"("\u0022\u005c")", "\"\\"},
       })
    EXPECT_EQ(textFrom(row.json), row.text) << row.json;
}

TEST(Strings, ComeBackWholeAroundFourKibibytes) {
  // A parser that undid their escapes itself would hand them over in pieces of 4096 bytes.
  for (const std::string_view escape : {R"(\n)", R"(\u00e9)", R"(\ud83d\ude00)"}) {
    const std::string_view meant = escape == R"(\n)" ? "\n" : escape == R"(\u00e9)" ? "é" : "😀";
    for (std::size_t before = 4070; before <= 4105; ++before) {
      const std::string plain(before, 'x');
      const std::string json =
          R"("\t)" + plain + std::string(escape) + plain + std::string(escape) + "\"";
      const std::string text = "\t" + plain + std::string(meant) + plain + std::string(meant);
      ASSERT_EQ(textFrom(json), text) << escape << " after " << before << " bytes";
    }
  }
}

TEST(Strings, WithBadEscapesAreRefusedEverywhere) {
  for (const std::string_view bad : {R"(\a)", R"(\u12)", R"(\ud83d)", R"(\ude00)"}) {
    const std::string escape(bad);
    EXPECT_EQ(plant(R"({"text":")" + escape + "\"}"), std::nullopt) << escape;
    EXPECT_EQ(plant(R"({"unknown":")" + escape + "\"}"), std::nullopt) << escape;
    EXPECT_EQ(plant(R"({"unknown":{"text":[")" + escape + "\"]}}"), std::nullopt) << escape;
    EXPECT_EQ(plant(R"({")" + escape + "\":1}"), std::nullopt) << escape;
    EXPECT_EQ(plant(R"({"unknown":{")" + escape + "\":1}}"), std::nullopt) << escape;
  }
}

TEST(Escapes, HaveNoPlaceOutsideStrings) {
  ASSERT_TRUE(plant(R"({"number":1})"));
  for (const char* text : {R"(\{"number":1})", R"({\n"number":1})", R"({"number"\n:1})",
                           R"({"number":1\n})", R"({"number":1}\n)", R"({\"number":1})",
                           R"({"number\":1})", R"({"number":\u0031})", R"({"number":1}\)"})
    EXPECT_EQ(plant(text), std::nullopt) << text;
}

TEST(Strings, MayBeVeryLong) {
  for (const std::size_t times : {4095U, 4096U, 4097U, 100000U}) {
    EXPECT_EQ(textFrom("\"" + repeated("x", times) + "\""), repeated("x", times)) << times;
    EXPECT_EQ(textFrom("\"" + repeated("é", times) + "\""), repeated("é", times)) << times;
    EXPECT_EQ(textFrom("\"" + repeated("\\n", times) + "\""), repeated("\n", times)) << times;
    EXPECT_EQ(textFrom("\"" + repeated("a\\u20ac€\\\\", times) + "\""), repeated("a€€\\", times))
        << times;
  }
}

TEST(Strings, InOneRecordAreKeptApart) {
  const std::optional<Plant> read =
      plant(R"({"text":"a\nb","unknown":"c\nd","maybeText":"e\nf","texts":["\n","g","h\n","i"]})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->text, "a\nb");
  EXPECT_EQ(read->maybeText, "e\nf");
  EXPECT_EQ(read->texts, (std::vector<std::string>{"\n", "g", "h\n", "i"}));
}

TEST(Keys, MayBeEscaped) {
  const std::optional<Plant> read =
      plant(R"({"te\u0078t":"a","un\u006bnown":{"te\u0078t":"b"},"\u006caybeText":0,)"
            R"("maybe\u0054ext":"c"})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->text, "a");
  EXPECT_EQ(read->maybeText, "c");
}

TEST(Keys, MayBeVeryLong) {
  const std::string key = repeated("k\\n", 5000);
  const std::optional<Plant> read = plant("{\"" + key + "\":1,\"text\":\"a\"}");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->text, "a");
}

TEST(Keys, GivenTwiceCountAsTheLastOfThemWhole) {
  struct Row {
    std::string_view name, twice, once;
  };
  for (const Row& row : {
           Row{"texts", R"({"text":"a","text":"b"})", R"({"text":"b"})"},
           Row{"three of them", R"({"text":"a","text":"b","text":"c"})", R"({"text":"c"})"},
           Row{"apart", R"({"text":"a","number":2,"text":"b"})", R"({"number":2,"text":"b"})"},
           Row{"escaped", R"({"text":"a","te\u0078t":"b"})", R"({"text":"b"})"},
           Row{"numbers", R"({"number":1,"number":2})", R"({"number":2})"},
           Row{"flags", R"({"flag":false,"flag":true})", R"({"flag":true})"},
           Row{"words", R"({"colour":"red","colour":"green"})", R"({"colour":"green"})"},
           Row{"lists", R"({"texts":["a"],"texts":["b","c"]})", R"({"texts":["b","c"]})"},
           Row{"an empty list", R"({"texts":["a"],"texts":[]})", "{}"},
           Row{"lists of records", R"({"leaves":[{"name":"a"}],"leaves":[{"name":"b"}]})",
               R"({"leaves":[{"name":"b"}]})"},
           Row{"optional lists", R"({"maybeTexts":["a"],"maybeTexts":["b"]})",
               R"({"maybeTexts":["b"]})"},
           Row{"records", R"({"leaf":{"name":"a","size":3},"leaf":{"name":"b"}})",
               R"({"leaf":{"name":"b"}})"},
           Row{"optional records",
               R"({"maybeLeaf":{"name":"a","size":3},"maybeLeaf":{"name":"b"}})",
               R"({"maybeLeaf":{"name":"b"}})"},
           Row{"null after a default", R"({"number":5,"flag":false,"number":null,"flag":null})",
               "{}"},
           Row{"null after a record", R"({"leaf":{"name":"a"},"leaf":null})", "{}"},
           Row{"null after a list", R"({"leaves":[{"name":"a"}],"leaves":null})", "{}"},
           Row{"null after an optional", R"({"maybeText":"a","maybeText":null})", "{}"},
           Row{"null before", R"({"text":null,"text":"b"})", R"({"text":"b"})"},
           Row{"a wrong type before", R"({"text":1,"text":"b"})", R"({"text":"b"})"},
           Row{"a wrong type, then null", R"({"text":[1],"text":null})", "{}"},
           Row{"a wrong list before", R"({"texts":["a",1],"texts":["b"]})", R"({"texts":["b"]})"},
           Row{"no list before", R"({"texts":{"a":[1]},"texts":["b"]})", R"({"texts":["b"]})"},
           Row{"no record before", R"({"leaf":[{}],"leaf":{"name":"b"}})",
               R"({"leaf":{"name":"b"}})"},
           Row{"a wrong record before", R"({"leaf":{"size":1},"leaf":{"name":"b"}})",
               R"({"leaf":{"name":"b"}})"},
           Row{"a wrong record in a list before",
               R"({"leaves":[{"name":"a"},{"name":2}],"leaves":[{"name":"b"}]})",
               R"({"leaves":[{"name":"b"}]})"},
           Row{"within a record", R"({"leaf":{"name":1,"size":1,"name":"b","size":null}})",
               R"({"leaf":{"name":"b"}})"},
           Row{"within records of a list",
               R"({"leaves":[{"name":null,"name":"a"},{"name":"b","size":"","size":2}]})",
               R"({"leaves":[{"name":"a"},{"name":"b","size":2}]})"},
           Row{"unknown ones", R"({"x":1,"x":{"x":2,"x":3}})", "{}"},
       }) {
    ASSERT_TRUE(plant(row.once)) << row.name;
    EXPECT_EQ(plant(row.twice), plant(row.once)) << row.name;
  }
}

TEST(Keys, GivenTwiceFailAsTheLastOfThemDoes) {
  for (const std::string_view text : {
           R"({"text":"a","text":1})",
           R"({"text":"a","text":1,"number":2})",
           R"({"text":1,"text":"a","text":[]})",
           R"({"texts":["a"],"texts":[null]})",
           R"({"texts":["a"],"texts":{}})",
           R"({"leaf":{"name":"a"},"leaf":{}})",
           R"({"leaf":{"name":"a"},"leaf":{"size":1}})",
           R"({"leaf":{"name":"a","name":null}})",
           R"({"leaves":[{"name":"a","name":1}]})",
           R"({"maybeLeaf":{"name":"a"},"maybeLeaf":"b"})",
           R"({"colour":"red","colour":"blue"})",
       })
    EXPECT_EQ(plant(text), std::nullopt) << text;
  EXPECT_EQ(decode<Leaf>(R"({"name":"a","name":null})"), std::nullopt);
}

TEST(Keys, GivenTwiceMustBothBeJson) {
  for (const std::string_view text :
       {R"({"text":"\x","text":"a"})", R"({"number":1e400,"number":1})",
        R"({"texts":[1e400],"texts":[]})", R"({"text":["\ud800"],"text":"a"})",
        R"({"text":{"\x":1},"text":"a"})", R"({"text":[1,],"text":"a"})"})
    EXPECT_EQ(plant(text), std::nullopt) << text;
}

TEST(Text, MayHaveWhiteSpaceAroundAndWithin) {
  const std::optional<Plant> read = plant(" \t\r\n{ \"text\" :\n\"a\" , \"texts\" : [ ] } \r\n");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->text, "a");
}

TEST(Text, ThatIsNotOneJsonObjectIsNothing) {
  using namespace std::string_view_literals;
  for (const std::string_view text : {
           ""sv,
           " "sv,
           "\n"sv,
           "{"sv,
           "}"sv,
           "{} x"sv,
           "{}{}"sv,
           "{}\n{}"sv,
           "{},"sv,
           "{}\0"sv,
           "\0{}"sv,
           "{\0}"sv,
           "\xef\xbb\xbf{}"sv,
           "\xc2\xa0{}"sv,
           "{\"text\"}"sv,
           "{\"text\":}"sv,
           "{\"text\":\"a\",}"sv,
           "{,}"sv,
           "{text:\"a\"}"sv,
           "{'text':'a'}"sv,
           "{\"text\" \"a\"}"sv,
           "{\"text\":\"a\" \"number\":1}"sv,
           "{\"text\":\"a\"]"sv,
           "{\"text\":\"a"sv,
           "{\"text\":\"a\\"sv,
           "{\"text\":\"a\\u12"sv,
           "{\"text\":\"a\"/**/}"sv,
           "{} // no"sv,
           "{\"flag\":tru}"sv,
           "{\"flag\":TRUE}"sv,
           "{\"text\":nul}"sv,
       })
    EXPECT_EQ(plant(text), std::nullopt) << "\"" << text << "\"";
}

TEST(Text, MustBeWhole) {
  const std::string_view whole =
      R"({"text":"é\n😀","number":-12.0,"flag":true,"leaves":[{"name":"\ud83d\ude00"}]})";
  ASSERT_TRUE(plant(whole));
  for (std::size_t size = 0; size < whole.size(); ++size)
    EXPECT_EQ(plant(whole.substr(0, size)), std::nullopt) << "its first " << size << " bytes";
}

TEST(Text, MustBeUtf8WithoutLoneSurrogates) {
  using namespace std::string_view_literals;
  for (const std::string_view inside : {
           "\x80"sv,
           "\xbf"sv,
           "\xc0\xaf"sv,
           "\xc1\xbf"sv,
           "\xc3"sv,
           "\xc3("sv,
           "\xe2\x82"sv,
           "\xe0\x80\x80"sv,
           "\xed\xa0\x80"sv,
           "\xed\xbf\xbf"sv,
           "\xf0\x80\x80\x80"sv,
           "\xf0\x9f\x98"sv,
           "\xf4\x90\x80\x80"sv,
           "\xf5\x80\x80\x80"sv,
           "\xff"sv,
           "\xfe"sv,
           "\0"sv,
           "\n"sv,
           "\t"sv,
           "\x1f"sv,
           "\\ud800"sv,
           "\\udbff"sv,
           "\\udc00"sv,
           "\\udfff"sv,
           "\\ud83d\\ud83d"sv,
           "\\ude00\\ud83d"sv,
           "\\ud83dx"sv,
           "\\ud83d\\n"sv,
           "\\u12g4"sv,
           "\\x41"sv,
           "\\U0041"sv,
           "\\'"sv,
       }) {
    for (const std::string_view before : {"", "plain ", "escaped\\n"}) {
      const std::string text = std::string(before) + std::string(inside);
      EXPECT_EQ(textFrom("\"" + text + "\""), std::nullopt) << text;
      EXPECT_EQ(plant("{\"unknown\":\"" + text + "\"}"), std::nullopt) << text;
      EXPECT_EQ(plant("{\"" + text + "\":1}"), std::nullopt) << text;
    }
  }
}

TEST(Nesting, IsReadToFiveHundredLevels) {
  const std::string lists = R"({"unknown":)" + repeated("[", 499) + repeated("]", 499) + "}";
  EXPECT_EQ(plant(lists), Plant{});
  const std::string objects = repeated("{\"a\":", 499) + "{}" + repeated("}", 499);
  EXPECT_EQ(plant(objects), Plant{});
}

TEST(Nesting, OfAMillionLevelsIsNothing) {
  constexpr std::size_t million = 1000000;
  EXPECT_EQ(plant(repeated("[", million)), std::nullopt);
  EXPECT_EQ(plant(repeated("{\"a\":", million)), std::nullopt);
  EXPECT_EQ(plant(R"({"unknown":)" + repeated("[", million) + repeated("]", million) + "}"),
            std::nullopt);
  EXPECT_EQ(plant(repeated("{\"a\":", million) + "1" + repeated("}", million)), std::nullopt);
  EXPECT_EQ(plant(R"({"texts":)" + repeated("[", million) + repeated("]", million) + "}"),
            std::nullopt);
}

TEST(Nesting, DoesNotLimitTheLengthOfAList) {
  const std::optional<Plant> read =
      plant(R"({"leaves":[)" + repeated(R"({"name":"a"},)", 20000) + R"({"name":"z"}]})");
  ASSERT_TRUE(read);
  EXPECT_EQ(read->leaves.size(), 20001U);
  EXPECT_EQ(read->leaves.back().name, "z");
}

TEST(Decoding, ReadsWhatEncodingWrote) {
  Plant whole;
  whole.text = "\"\\\b\f\n\r\t\x01\x7f é 😀 " + std::string(1, '\0') + std::string(5000, 'x');
  whole.number = lowest;
  whole.colour = Colour::red;
  whole.leaf = {"", highest};
  whole.texts = {"", "\n"};
  whole.leaves = {{"a", -1}, {}};
  whole.maybeText = "";
  whole.maybeLeaf = Leaf{};
  whole.maybeTexts.emplace();
  EXPECT_EQ(plant(encode(whole)), whole);
  EXPECT_EQ(plant(encode(Plant{})), Plant{});
}

}  // namespace
}  // namespace quillpost::json
