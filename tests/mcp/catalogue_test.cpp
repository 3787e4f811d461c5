#include "mcp/catalogue.h"

#include "harness/json_object.h"
#include "harness/tool_block.h"
#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <set>

namespace quillpost {
namespace {

using Profile = TeamworkClientProfile::Profile;
using testing::lineOf;
using testing::memberOf;
using testing::objectFrom;

const json::TreeObject& toolNamed(const json::TreeObject& list, std::string_view name) {
  for (const json::Tree& tool : list.at("tools").as_array())
    if (json::findText(tool.as_object(), "name") == name) return tool.as_object();
  ADD_FAILURE() << "no tool " << name;
  return list;
}

const json::TreeObject& schemaOf(const json::TreeObject& list, std::string_view name) {
  return toolNamed(list, name).at("inputSchema").as_object();
}

std::string descriptionOf(Profile profile, std::string_view name) {
  const json::TreeObject list = objectFrom(toolListResult(profile));
  return std::string(json::findText(toolNamed(list, name), "description").value_or(""));
}

TEST(Catalogue, ListsEveryToolInOrder) {
  const json::TreeObject list = objectFrom(toolListResult(Profile::unknown));
  EXPECT_EQ(list.size(), 1u);
  const boost::json::array& tools = list.at("tools").as_array();
  ASSERT_EQ(tools.size(), toolNames.size());
  for (std::size_t i = 0; i < tools.size(); ++i)
    EXPECT_EQ(json::findText(tools[i].as_object(), "name"), toolNames[i]);
}

TEST(Catalogue, GivesEachToolThreeMembersAndAClosedSchema) {
  const json::TreeObject list = objectFrom(toolListResult(Profile::claude));
  for (const json::Tree& tree : list.at("tools").as_array()) {
    const json::TreeObject& tool = tree.as_object();
    const std::string name(json::findText(tool, "name").value_or("?"));
    std::set<std::string> members;
    for (const auto& member : tool) members.emplace(member.key());
    EXPECT_EQ(members, (std::set<std::string>{"name", "description", "inputSchema"})) << name;
    const json::TreeObject& schema = tool.at("inputSchema").as_object();
    EXPECT_EQ(memberOf(schema, "type"), R"("object")") << name;
    EXPECT_EQ(memberOf(schema, "additionalProperties"), "false") << name;
    ASSERT_TRUE(schema.at("properties").is_object()) << name;
    EXPECT_EQ(schema.size(), schema.contains("required") ? 4u : 3u) << name;
    for (const auto& property : schema.at("properties").as_object()) {
      const json::TreeObject& value = property.value().as_object();
      EXPECT_TRUE(json::findText(value, "description")) << name << "." << property.key();
      const bool isList = memberOf(value, "type") == R"("array")";
      EXPECT_EQ(memberOf(value, "items"), isList ? R"({"type":"string"})" : "absent")
          << name << "." << property.key();
    }
  }
}

TEST(Catalogue, WritesTheSchemaThatTheRowSays) {
  struct Row {
    std::string_view tool, properties, required;
  };
  const json::TreeObject list = objectFrom(toolListResult(Profile::unknown));
  for (const Row& row : {
           Row{"unregister", "{}", "absent"},
           Row{"claim_task",
               R"({"taskID":{"type":"string","description":"The task id as returned by )"
               R"(list_tasks."}})",
               R"(["taskID"])"},
           Row{"verify_task",
               R"({"taskID":{"type":"string","description":"The task id as returned by )"
               R"(list_tasks."},"approve":{"type":"boolean","description":"true = verified )"
               R"((work checks out), false = rejected (needs more)."},"note":{"type":"string",)"
               R"("description":"The verdict in a line. Capped at 200 characters; the detail )"
               R"(goes into comment_task."}})",
               R"(["taskID","approve"])"},
           Row{"read_plan",
               R"({"offset":{"type":"integer","description":"Optional 1-based line to start at."},)"
               R"("limit":{"type":"integer","description":"Optional max lines to return."}})",
               "absent"},
       }) {
    EXPECT_EQ(memberOf(schemaOf(list, row.tool), "properties"), row.properties) << row.tool;
    EXPECT_EQ(memberOf(schemaOf(list, row.tool), "required"), row.required) << row.tool;
  }
}

TEST(Catalogue, ListsClosedSetsInOrder) {
  const json::TreeObject list = objectFrom(toolListResult(Profile::unknown));
  const auto choicesOf = [&list](std::string_view tool, std::string_view property) {
    const json::TreeObject& properties = schemaOf(list, tool).at("properties").as_object();
    return memberOf(properties.at(property).as_object(), "enum");
  };
  EXPECT_EQ(choicesOf("list_tasks", "include"), R"(["active","all"])");
  EXPECT_EQ(choicesOf("update_task", "type"), R"(["bug","feature","chore","research",""])");
  EXPECT_EQ(choicesOf("update_task", "waitsOn"), "absent");
}

TEST(Catalogue, EndsTheWaitByTheClient) {
  const testing::SectionFile block = testing::toolBlock(waitForChanges);
  const std::string longEnding = lineOf(block, "ending for claude");
  const std::string shortEnding = lineOf(block, "ending for others");
  for (const Profile profile :
       {Profile::claude, Profile::codex, Profile::antigravity, Profile::cursor, Profile::unknown}) {
    const bool isLong = profile == Profile::claude;
    const std::string description = descriptionOf(profile, "wait_for_changes");
    EXPECT_TRUE(description.ends_with(". " + (isLong ? longEnding : shortEnding))) << description;
    EXPECT_EQ(description.find(isLong ? shortEnding : longEnding), std::string::npos);
  }
}

TEST(Catalogue, DependsOnTheClientInNothingElse) {
  const json::TreeObject one = objectFrom(toolListResult(Profile::claude));
  const json::TreeObject other = objectFrom(toolListResult(Profile::unknown));
  for (const std::string_view name : toolNames) {
    if (name == waitForChanges) continue;
    EXPECT_EQ(toolNamed(one, name), toolNamed(other, name)) << name;
  }
  EXPECT_EQ(schemaOf(one, waitForChanges), schemaOf(other, waitForChanges));
  EXPECT_EQ(toolListResult(Profile::codex), toolListResult(Profile::cursor));
}

TEST(Catalogue, NeverListsTheOtherNameOfTheWait) {
  for (const Profile profile : {Profile::claude, Profile::unknown})
    EXPECT_EQ(toolListResult(profile).find("wait_for_tasks"), std::string::npos);
}

}  // namespace
}  // namespace quillpost
