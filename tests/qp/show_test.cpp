#include "qp/show.h"

#include "harness/fake_output.h"
#include "harness/json_object.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

Call callOf(std::string_view tool, bool asJson) {
  return {.tool = findTool(tool), .asJson = asJson};
}

/// A reply that begins with JSON and goes on in words.
ToolReply jsonReply() {
  ToolReply reply;
  json::appendObject(reply.text, [](json::Object& object) { object.add("a", "\"b\""); });
  reply.text.append("\n\nMind the gap.");
  reply.threadTag = "T-1";
  return reply;
}

TEST(Show, PrintsTheWordsAsTheyAre) {
  const Printed shown = printed({callOf("claim_task", false), jsonReply()});
  EXPECT_EQ(shown.output, "{\"a\":\"\\\"b\\\"\"}\n\nMind the gap.\n\n(thread T-1)\n");
  EXPECT_EQ(shown.errors, "");
}

TEST(Show, PutsWhatStandsAroundTheJsonAside) {
  const Printed shown = printed({callOf("claim_task", true), jsonReply()});
  EXPECT_EQ(shown.output, "{\"a\":\"\\\"b\\\"\"}\n");
  EXPECT_EQ(shown.errors, "Mind the gap.\n\n(thread T-1)\n");
}

TEST(Show, MakesAnObjectOfAText) {
  ToolReply reply;
  reply.text.append("Done \"it\".\nNext.");
  const Printed shown = printed({callOf("claim_task", true), reply});
  EXPECT_EQ(shown.output, "{\"text\":\"Done \\\"it\\\".\\nNext.\"}\n");
  EXPECT_EQ(shown.errors, "");
}

TEST(Show, GivesOnlyAnErrorOfAFailure) {
  ToolReply reply;
  reply.text.append("No.");
  reply.end = CallEnd::refused;
  const Printed shown = printed({callOf("claim_task", true), reply});
  EXPECT_EQ(shown.output, "");
  EXPECT_EQ(shown.errors, "{\"error\":\"No.\",\"status\":1}\n");
  EXPECT_EQ(printed({callOf("claim_task", false), reply}).output, "No.\n");
}

TEST(Show, CutsALongBacklogForAPersonAndNotForAProgram) {
  ToolReply reply;
  json::appendObject(reply.text, [](json::Object& object) {
    json::Array list = object.array("readyToClaim");
    for (int i = 0; i < 52; ++i) list.object().add("id", "t");
  });
  const Printed person = printed({callOf("list_tasks", false), reply});
  EXPECT_TRUE(person.output.ends_with("\n… 2 more under readyToClaim: qp tasks --all\n"));
  const Printed program = printed({callOf("list_tasks", true), reply});
  EXPECT_EQ(program.output, reply.text.json() + "\n");
  EXPECT_EQ(program.errors, "");
  Call few = callOf("list_tasks", true);
  few.options["limit"] = 1;
  EXPECT_EQ(printed({few, reply}).output, "{\"readyToClaim\":[{\"id\":\"t\"}]}\n");
  EXPECT_EQ(printed({few, reply}).errors, "… 51 more under readyToClaim: qp tasks --all\n");
}

TEST(Show, SaysWhenNobodyReads) {
  testing::FakeOutput out, err;
  const Console console = {.output = out, .errors = err};
  EXPECT_TRUE(print(console, {.output = "a\n", .errors = "b\x1b\n"}));
  EXPECT_EQ(out.text, "a\n");
  EXPECT_EQ(err.text, "b\u241b\n");
  out.leavesAfter = 0;
  EXPECT_FALSE(print(console, {.output = "a\n", .errors = ""}));
}

}  // namespace
}  // namespace quillpost
