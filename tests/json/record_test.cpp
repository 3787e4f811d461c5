#include "json/record.h"

#include <gtest/gtest.h>

#include <array>

namespace quillpost::json {
namespace {

enum class Colour { red, green, outside };

struct Leaf {
  std::string name;
  int64_t size = 0;

  static constexpr auto fields() {
    return std::tuple{required("name", &Leaf::name), defaulted("size", &Leaf::size)};
  }
};

struct Tree {
  std::string text;
  int64_t number = 0;
  bool flag = false;
  Colour colour = Colour::red;
  Leaf leaf;
  std::vector<std::string> texts;
  std::vector<Leaf> leaves;
  std::optional<std::string> maybeText;
  std::optional<int64_t> maybeNumber;
  std::optional<bool> maybeFlag;
  std::optional<Colour> maybeColour;
  std::optional<Leaf> maybeLeaf;
  std::optional<std::vector<std::string>> maybeTexts;
  std::optional<std::vector<Leaf>> maybeLeaves;

  static constexpr auto fields() {
    return std::tuple{required("text", &Tree::text),
                      required("number", &Tree::number),
                      required("flag", &Tree::flag),
                      required("colour", &Tree::colour),
                      required("leaf", &Tree::leaf),
                      defaulted("texts", &Tree::texts),
                      defaulted("leaves", &Tree::leaves),
                      optional("maybeText", &Tree::maybeText),
                      optional("maybeNumber", &Tree::maybeNumber),
                      optional("maybeFlag", &Tree::maybeFlag),
                      optional("maybeColour", &Tree::maybeColour),
                      optional("maybeLeaf", &Tree::maybeLeaf),
                      optional("maybeTexts", &Tree::maybeTexts),
                      optional("maybeLeaves", &Tree::maybeLeaves)};
  }
};

struct Forgetful {
  int64_t told = 0;
  int64_t forgotten = 0;

  static constexpr auto fields() { return std::tuple{required("told", &Forgetful::told)}; }
};

struct Plain {
  int64_t number = 0;
};

struct Nothing {};

}  // namespace

template <>
struct Names<Colour> {
  static constexpr std::array rows = {
      Name<Colour>{Colour::red, "red"},
      Name<Colour>{Colour::green, "green"},
  };
};

namespace {

TEST(MemberCount, CountsEveryMemberOnce) {
  EXPECT_EQ(memberCount<Nothing>(), 0U);
  EXPECT_EQ(memberCount<Plain>(), 1U);
  EXPECT_EQ(memberCount<Leaf>(), 2U);
  EXPECT_EQ(memberCount<Tree>(), 14U);
}

TEST(Record, IsAStructWithARowForEachMember) {
  EXPECT_TRUE(Record<Leaf>);
  EXPECT_TRUE(Record<Tree>);
  EXPECT_FALSE(Record<Forgetful>) << "a member without a row";
  EXPECT_FALSE(Record<Plain>) << "no table";
  EXPECT_FALSE(Record<std::string>);
  EXPECT_FALSE(Record<int64_t>);
}

TEST(Rows, AreVisitedInTheOrderOfTheTable) {
  std::string keys;
  forEachField<Leaf>([&](const auto& field) { keys.append(field.key).append(" "); });
  EXPECT_EQ(keys, "name size ");
}

TEST(Rows, SayWhatAMissingKeyMeans) {
  EXPECT_EQ(required("a", &Tree::text).presence, Presence::required);
  EXPECT_EQ(optional("a", &Tree::maybeText).presence, Presence::optional);
  EXPECT_EQ(defaulted("a", &Tree::text).presence, Presence::defaulted);
  EXPECT_EQ(required("a", &Tree::maybeText).member, &Tree::maybeText);
}

TEST(Vocabulary, IsReadInBothDirections) {
  EXPECT_EQ(wordFor(Colour::red), "red");
  EXPECT_EQ(wordFor(Colour::green), "green");
  EXPECT_EQ(fromWord<Colour>("red"), Colour::red);
  EXPECT_EQ(fromWord<Colour>("green"), Colour::green);
}

TEST(Vocabulary, KnowsNothingElse) {
  EXPECT_EQ(wordFor(Colour::outside), "");
  for (const std::string_view word : {"", "Red", "red ", "re", "outside"})
    EXPECT_EQ(fromWord<Colour>(word), std::nullopt) << word;
}

TEST(Vocabulary, MayHoldNothingTwice) {
  using Row = Name<Colour>;
  EXPECT_TRUE(allDifferent(Names<Colour>::rows));
  EXPECT_FALSE(allDifferent(std::array{Row{Colour::red, "a"}, Row{Colour::red, "b"}}));
  EXPECT_FALSE(allDifferent(std::array{Row{Colour::red, "a"}, Row{Colour::green, "a"}}));
  EXPECT_TRUE(Named<Colour>);
  EXPECT_FALSE(Named<Presence>) << "an enumeration without words";
}

TEST(Encoding, LeavesOutOnlyWhatIsOptionalAndHasNoValue) {
  EXPECT_EQ(encode(Tree{}),
            R"({"text":"","number":0,"flag":false,"colour":"red","leaf":{"name":"","size":0},)"
            R"("texts":[],"leaves":[]})");
}

TEST(Encoding, WritesEveryKindOfMemberInTheTablesOrder) {
  const Leaf leaf = {.name = "oak", .size = -3};
  Tree tree;
  tree.text = "a\n\"b\"";
  tree.number = 9223372036854775807;
  tree.flag = true;
  tree.colour = Colour::green;
  tree.leaf = leaf;
  tree.texts = {"x", ""};
  tree.leaves = {leaf, {}};
  tree.maybeText = "";
  tree.maybeNumber = 0;
  tree.maybeFlag = false;
  tree.maybeColour = Colour::red;
  tree.maybeLeaf = leaf;
  tree.maybeTexts.emplace();
  tree.maybeLeaves = std::vector{leaf};
  EXPECT_EQ(encode(tree),
            R"({"text":"a\n\"b\"","number":9223372036854775807,"flag":true,"colour":"green",)"
            R"("leaf":{"name":"oak","size":-3},"texts":["x",""],)"
            R"("leaves":[{"name":"oak","size":-3},{"name":"","size":0}],)"
            R"("maybeText":"","maybeNumber":0,"maybeFlag":false,"maybeColour":"red",)"
            R"("maybeLeaf":{"name":"oak","size":-3},"maybeTexts":[],)"
            R"("maybeLeaves":[{"name":"oak","size":-3}]})");
}

TEST(Encoding, AddsTheMembersToAnObjectThatHasOthers) {
  std::string out;
  {
    Object object(out);
    object.add("before", 1);
    encodeMembers(object, Leaf{.name = "elm", .size = 2});
    object.add("after", 3);
  }
  EXPECT_EQ(out, R"({"before":1,"name":"elm","size":2,"after":3})");
}

}  // namespace
}  // namespace quillpost::json
