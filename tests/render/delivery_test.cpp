#include "render/delivery.h"

#include "harness/golden.h"
#include "harness/plain_text.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::expandedJson;
using testing::objectText;
using testing::sameText;

const std::vector<TeamworkSquadMessage> two = {{"m1", "M2X", "Bo", "one\ntwo", 4},
                                               {"m2", "#a3f9", "", "three", -1}};

TEST(Delivery, IsNothingWithoutMessages) {
  EXPECT_EQ(objectText([](json::Object& out) { addDelivery(out, {}); }), "{}");
  json::EscapedText text("Done.");
  appendDelivery(text, {});
  EXPECT_EQ(text.escaped(), "Done.");
}

TEST(Delivery, ComesWithTheNoteInAnObject) {
  EXPECT_TRUE(sameText(
      expandedJson(R"({"messages":[{"from":"M2X","text":"one\ntwo","fromName":"Bo","ageSeconds":4})"
                   R"(,{"from":"#a3f9","text":"three","ageSeconds":-1}],)"
                   R"("messagesNote":"{{messagesNote}}"})"),
      objectText([](json::Object& out) { addDelivery(out, two); })));
}

TEST(Delivery, ComesWithTheNoteInAText) {
  json::EscapedText text("Done.");
  appendDelivery(text, two);
  EXPECT_TRUE(
      sameText(expanded("Done.\n\n"
                        R"([{"from":"M2X","text":"one\ntwo","fromName":"Bo","ageSeconds":4},)"
                        R"({"from":"#a3f9","text":"three","ageSeconds":-1}])"
                        "\n\n{{messagesNote}}"),
               testing::plainText(text)));
}

}  // namespace
}  // namespace quillpost
