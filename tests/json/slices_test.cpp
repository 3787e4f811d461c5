#include "json/slices.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillpost::json {
namespace {

using Texts = std::vector<std::string_view>;

/// The members with a "=" between key and value.
std::vector<std::string> written(std::string_view object) {
  std::vector<std::string> members;
  for (const MemberSlice& member : membersOf(object))
    members.push_back(std::string(member.key) + "=" + std::string(member.value));
  return members;
}

TEST(Slices, AreTheElementsOfAnArrayWhateverTheyHold) {
  EXPECT_EQ(elementsOf("[]"), Texts());
  EXPECT_EQ(elementsOf("[1]"), Texts({"1"}));
  EXPECT_EQ(elementsOf(R"([1,"a,]b",{"k":[2,{}]},[],null])"),
            Texts({"1", R"("a,]b")", R"({"k":[2,{}]})", "[]", "null"}));
  EXPECT_EQ(elementsOf(R"(["a\",","\\",",\\\"]"])"),
            Texts({R"("a\",")", R"("\\")", R"(",\\\"]")"}));
  EXPECT_EQ(elementsOf(" [ 1 ,\n2 ] "), Texts({"1", "2"}));
}

TEST(Slices, AreTheMembersOfAnObjectWithTheirKeys) {
  EXPECT_EQ(written("{}"), std::vector<std::string>());
  EXPECT_EQ(written(R"({"a":1,"b:,":{"c":[1,2]},"d\"":"x:y"})"),
            std::vector<std::string>({"a=1", R"(b:,={"c":[1,2]})", R"(d\"="x:y")"}));
  EXPECT_EQ(written(R"( { "a" : [ 1 ] , "b" : "" } )"),
            std::vector<std::string>({"a=[ 1 ]", R"(b="")"}));
}

TEST(Slices, OfWhatIsNoSuchTextAreNone) {
  for (const std::string_view text : {"", " ", "[", "]", "{", "1", "no json", "\"[1]\""}) {
    EXPECT_EQ(elementsOf(text), Texts()) << text;
    EXPECT_EQ(written(text), std::vector<std::string>()) << text;
  }
  EXPECT_EQ(elementsOf("{}"), Texts());
  EXPECT_EQ(written("[]"), std::vector<std::string>());
}

TEST(Slices, OfATextThatBreaksOffEndWithIt) {
  const std::string_view whole = R"({"a":{"b":"c\"d"},"e":[1,"f"]})";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const std::string text = std::string(whole.substr(0, size)) + "}";
    EXPECT_LE(membersOf(text).size(), 2u) << text;
    EXPECT_LE(elementsOf("[" + text + "]").size(), 2u) << text;
  }
}

}  // namespace
}  // namespace quillpost::json
