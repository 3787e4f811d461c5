#include "calls/request_rules.h"

#include "base/text.h"
#include "harness/json_object.h"
#include "model/coding.h"
#include "tools/tool_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace quillpost {
namespace {

using testing::objectFrom;

std::string fieldsFrom(std::string_view tool, std::string_view arguments) {
  TeamworkRequest request;
  request.token = "tok";
  request.sessionID = "ses";
  request.method = tool;
  const json::TreeObject object = objectFrom(arguments);
  fillFromArguments(request, tool, Arguments(object));
  const std::string text = encodeRequest(request).value_or("not encodable");
  const std::string envelope =
      text::cat(R"({"protocolVersion":1,"token":"tok","sessionID":"ses","method":")", tool, "\"");
  EXPECT_TRUE(text.starts_with(envelope)) << text;
  std::string_view rest(text);
  rest.remove_prefix(std::min(rest.size(), envelope.size()));
  if (rest.starts_with(',')) rest.remove_prefix(1);
  return text::cat("{", rest);
}

TEST(RequestRules, NameEveryFieldExactlyOnceTogetherWithTheOthers) {
  std::vector<std::string_view> named(ruledFields().begin(), ruledFields().end());
  for (const std::string_view fixed : {"protocolVersion", "token", "sessionID", "method"})
    named.push_back(fixed);
  for (const std::string_view ofWaiting :
       {"taskIDs", "sinceRev", "holdMs", "wakeOnStateChanges", "waiting", "standDown"})
    named.push_back(ofWaiting);
  // The other composed field is the goal: it goes where every other tool's name goes.
  named.push_back("blockerQuestion");

  std::vector<std::string_view> all;
  json::forEachField<TeamworkRequest>([&](const auto& field) { all.push_back(field.key); });
  EXPECT_EQ(all.size(), 39u);
  std::ranges::sort(named);
  std::ranges::sort(all);
  EXPECT_EQ(named, all);
}

/// What a call with these arguments sends beside the envelope.
struct RuleRow {
  std::string_view tool, arguments, fields;
};

void check(std::initializer_list<RuleRow> rows) {
  for (const RuleRow& row : rows)
    EXPECT_EQ(fieldsFrom(row.tool, row.arguments), row.fields)
        << row.tool << " of " << row.arguments;
}

// clang-format off

TEST(RequestRules, FillOneFieldFromOneArgument) {
  check({
      {"register",       R"({"name":"n"})",                    R"({"name":"n"})"},
      {"register",       R"({"role":"r"})",                    R"({"role":"r"})"},
      {"verify_task",    R"({"approve":true})",                R"({"approve":true})"},
      {"verify_task",    R"({"approve":false})",               R"({"approve":false})"},
      {"request_review", R"({"ofAgent":"#a3f9"})",             R"({"reviewOfFingerprint":"#a3f9"})"},
      {"request_review", R"({"ofRole":"r"})",                  R"({"reviewOfRole":"r"})"},
      {"add_task",       R"({"priority":7})",                  R"({"priority":7})"},
      {"add_task",       R"({"type":"bug"})",                  R"({"taskType":"bug"})"},
      {"update_task",    R"({"type":""})",                     R"({"taskType":""})"},
      {"add_task",       R"({"resources":["a"]})",             R"({"resources":["a"]})"},
      {"update_task",    R"({"resources":[]})",                R"({"resources":[]})"},
      {"add_task",       R"({"assignedRole":"r"})",            R"({"assignedRole":"r"})"},
      {"add_task",       R"({"routedToFingerprint":"#a3f9"})", R"({"routedToFingerprint":"#a3f9"})"},
      {"add_task",       R"({"to":"KQ3"})",                    R"({"to":"KQ3"})"},
      {"heartbeat",      R"({"status":"s"})",                  R"({"status":"s"})"},
      {"claim_task",     R"({"taskID":"t1"})",                 R"({"taskID":"t1"})"},
      {"add_task",       R"({"title":"t"})",                   R"({"title":"t"})"},
      {"add_task",       R"({"body":"b"})",                    R"({"body":"b"})"},
      {"comment_task",   R"({"text":"t"})",                    R"({"note":"t"})"},
      {"update_task",    R"({"progress":"p"})",                R"({"note":"p"})"},
      {"update_task",    R"({"blocked":false})",               R"({"blocked":false})"},
      {"update_task",    R"({"parkReason":"p"})",              R"({"parkReason":"p"})"},
      {"complete_task",  R"({"summary":"s"})",                 R"({"summary":"s"})"},
      {"update_task",    R"({"waitsOn":[]})",                  R"({"waitsOn":[]})"},
      {"add_task",       R"({"waitsOn":["a","b"]})",           R"({"waitsOn":["a","b"]})"},
      {"reject_task",    R"({"reason":"r"})",                  R"({"releaseReason":"r"})"},
      {"comment_task",   R"({"tags":["human"]})",              R"({"tags":["human"]})"},
      {"open_discussion", R"({"addressTo":["human"]})",        R"({"tags":["human"]})"},
      {"comment_task",   R"({"editLast":true})",               R"({"editLast":true})"},
      {"propose_goal_complete", R"({"acknowledgeOpenTasks":false})",
                                                               R"({"acknowledgeOpenTasks":false})"},
      {"reply_discussion", R"({"discussionID":"d123456"})",    R"({"discussionID":"d123456"})"},
  });
}

TEST(RequestRules, TakeTheBodyFromWhatTheToolCallsIt) {
  check({
      {"open_discussion",    R"({"question":"q","body":"b"})",   R"({"body":"q"})"},
      {"reply_discussion",   R"({"text":"t","body":"b"})",       R"({"body":"t","note":"t"})"},
      {"resolve_discussion", R"({"resolution":"r","body":"b"})", R"({"body":"r"})"},
      {"send_message",       R"({"to":"KQ3","text":"t"})",
                                                       R"({"to":"KQ3","body":"t","note":"t"})"},
      {"request_hands",      R"({"brief":"b","body":"x"})",      R"({"body":"b"})"},
      {"suggest_helper",     R"({"reason":"r","body":"b"})",     R"({"body":"r","releaseReason":"r"})"},
      {"update_task",        R"({"body":"b","question":"q","resolution":"r","brief":"x"})",
                                                                 R"({"body":"b"})"},
      {"comment_task",       R"({"text":"t","body":"b"})",       R"({"body":"b","note":"t"})"},
      {"reject_task",        R"({"reason":"r"})",                R"({"releaseReason":"r"})"},
      {"open_discussion",    R"({"body":"b"})",                  R"({})"},
      {"send_message",       R"({"body":"b"})",                  R"({})"},
      {"suggest_helper",     R"({"body":"b"})",                  R"({})"},
      {"open_discussion",    R"({"question":7,"body":"b"})",     R"({})"},
  });
}

TEST(RequestRules, ReadTheHelperArgumentsForTheirToolsOnly) {
  check({
      {"stop_helper",    R"({"handle":"KQ4","to":"KQ3"})",  R"({"to":"KQ4"})"},
      {"stop_helper",    R"({"handle":4,"to":"KQ3"})",      R"({"to":"KQ3"})"},
      {"stop_helper",    R"({"handle":"","to":"KQ3"})",     R"({"to":""})"},
      {"assign_task",    R"({"handle":"KQ4","to":"KQ3"})",  R"({"to":"KQ3"})"},
      {"assign_task",    R"({"handle":"KQ4"})",             R"({})"},
      {"request_hands",  R"({"agent":"a","to":"@laptop","command":"c","explanation":"e"})",
                                                            R"({"to":"@laptop","agent":"a"})"},
      {"request_hands",  R"({"name":"n"})",                 R"({"name":"n"})"},
      {"suggest_helper", R"({"name":"n","command":"c","explanation":"e","reason":"r"})",
       R"({"name":"n","agent":"n","command":"c","explanation":"e","body":"r","releaseReason":"r"})"},
      {"suggest_helper", R"({"agent":"a"})",                R"({})"},
      {"register",       R"({"agent":"a","command":"c","explanation":"e"})", R"({})"},
  });
}

TEST(RequestRules, TakeTheFirstOfTwoArgumentsThatIsPresent) {
  check({
      {"update_task",     R"({"text":"t","progress":"p"})",            R"({"note":"t"})"},
      {"update_task",     R"({"text":"","progress":"p"})",             R"({"note":""})"},
      {"update_task",     R"({"text":null,"progress":"p"})",           R"({"note":"p"})"},
      {"open_discussion", R"({"addressTo":["human"],"tags":["x"]})",   R"({"tags":["human"]})"},
      {"open_discussion", R"({"addressTo":[],"tags":["x"]})",          R"({"tags":[]})"},
      {"open_discussion", R"({"addressTo":[1],"tags":["x"]})",         R"({"tags":[]})"},
      {"open_discussion", R"({"addressTo":"human","tags":["x"]})",     R"({"tags":["x"]})"},
      {"comment_task",    R"({"tags":["x"]})",                         R"({"tags":["x"]})"},
  });
}

TEST(RequestRules, NeverReadAnArgumentCalledNote) {
  check({
      {"request_review", R"({"taskID":"t1","note":"look here"})", R"({"taskID":"t1"})"},
      {"verify_task",    R"({"approve":false,"note":"fails on empty input"})",
                                                                  R"({"approve":false})"},
      {"comment_task",   R"({"note":"n"})",                       R"({})"},
  });
}

TEST(RequestRules, ForwardWhatTheSchemaOfTheToolDoesNotDeclare) {
  check({
      {"list_agents",  R"({"status":"s","taskID":"t1","priority":"3"})",
                       R"({"priority":3,"status":"s","taskID":"t1"})"},
      {"register",     R"({"blocked":true,"summary":"s","tags":["a"]})",
                       R"({"blocked":true,"summary":"s","tags":["a"]})"},
      {"release_task", R"({"reason":"r","text":"t"})", R"({"note":"t","releaseReason":"r"})"},
      {"read_task",    R"({"name":"n"})", R"({"name":"n"})"},
      {"unregister",   R"({"parkReason":"p","editLast":false,"acknowledgeOpenTasks":true})",
                       R"({"parkReason":"p","editLast":false,"acknowledgeOpenTasks":true})"},
  });
}

TEST(RequestRules, LeaveTheComposedTextsAndWhatBelongsToWaiting) {
  check({
      {"set_goal",    R"({"name":"n","description":"d"})", R"({})"},
      {"set_charter", R"({"name":"n","description":"d"})", R"({"name":"n"})"},
      {"update_task", R"({"blocked":true,"blockerQuestion":"q","blockerKind":"secret"})",
                      R"({"blocked":true})"},
      {"heartbeat",   R"({"taskIDs":["a"],"sinceRev":1,"holdMs":2,"wakeOnStateChanges":true,)"
                      R"("wakeOnClaims":true,"waiting":true,"standDown":true})", R"({})"},
      {"list_tasks",  R"({"include":"all","offset":1,"limit":2,"logOffset":3,"logLimit":4})",
                      R"({})"},
      {"register",    R"({"token":"x","sessionID":"x","method":"x","protocolVersion":2})", R"({})"},
  });
}

TEST(RequestRules, TreatAValueOfAnotherKindAsAbsent) {
  check({
      {"add_task",    R"({"title":7,"body":null,"summary":["s"],"to":{"a":1}})", R"({})"},
      {"add_task",    R"({"priority":"7a"})",                  R"({})"},
      {"add_task",    R"({"priority":true})",                  R"({})"},
      {"add_task",    R"({"priority":1e30})",                  R"({})"},
      {"add_task",    R"({"priority":9223372036854775808})",   R"({})"},
      {"add_task",    R"({"priority":"+7"})",                  R"({"priority":7})"},
      {"add_task",    R"({"priority":2.9})",                   R"({"priority":2})"},
      {"add_task",    R"({"priority":-2.9})",                  R"({"priority":-2})"},
      {"add_task",    R"({"resources":["a",3,"b"]})",          R"({"resources":["a","b"]})"},
      {"add_task",    R"({"resources":"a"})",                  R"({})"},
      {"update_task", R"({"blocked":"true","waitsOn":{}})",    R"({})"},
      {"verify_task", R"({"approve":1})",                      R"({})"},
  });
}

TEST(RequestRules, CleanASummaryForEveryTool) {
  check({
      {"complete_task", R"({"summary":" [[gist]]  [[gist]] done\n"})", R"({"summary":"done"})"},
      {"comment_task",  R"({"summary":"[[gist]] done"})",              R"({"summary":"done"})"},
      {"register",      R"({"summary":"\tdone "})",                    R"({"summary":"done"})"},
      {"update_task",   R"({"summary":" \n "})",                       R"({"summary":""})"},
      {"update_task",   R"({"summary":""})",                           R"({"summary":""})"},
      {"update_task",   R"({"summary":"a [[gist]] b"})",               R"({"summary":"a [[gist]] b"})"},
  });
}

TEST(RequestRules, SendEveryOtherTextAsItWasGiven) {
  check({
      {"update_task", R"({"progress":" [[gist]] p \n","body":" b\n\n","title":""})",
                      R"({"title":"","body":" b\n\n","note":" [[gist]] p \n"})"},
      {"register",    R"({"name":"é/\"\u0000😀"})", R"({"name":"é/\"\u0000😀"})"},
  });
}

// clang-format on

TEST(RequestRules, GiveNothingForACallWithoutArguments) {
  for (const std::string_view tool : boardMethods) EXPECT_EQ(fieldsFrom(tool, "{}"), "{}") << tool;
}

TEST(RequestRules, FillEveryFieldThatHasARule) {
  // Every argument that any rule names, for a tool that has no rule of its own.
  const std::string all = fieldsFrom(
      "update_task",
      R"({"name":"a","role":"b","approve":true,"ofAgent":"c","ofRole":"d","priority":1,)"
      R"("type":"e","resources":["f"],"assignedRole":"g","routedToFingerprint":"h","to":"i",)"
      R"("status":"j","taskID":"k","title":"l","body":"m","text":"n","blocked":true,)"
      R"("parkReason":"o","summary":"p","waitsOn":["q"],"reason":"r","tags":["s"],)"
      R"("editLast":true,"acknowledgeOpenTasks":true,"discussionID":"t"})");
  EXPECT_EQ(all,
            R"({"name":"a","role":"b","approve":true,"reviewOfFingerprint":"c",)"
            R"("reviewOfRole":"d","priority":1,"taskType":"e","resources":["f"],)"
            R"("assignedRole":"g","routedToFingerprint":"h","to":"i","status":"j","taskID":"k",)"
            R"("title":"l","body":"m","note":"n","blocked":true,"parkReason":"o","summary":"p",)"
            R"("waitsOn":["q"],"releaseReason":"r","tags":["s"],"editLast":true,)"
            R"("acknowledgeOpenTasks":true,"discussionID":"t"})");
}

}  // namespace
}  // namespace quillpost
