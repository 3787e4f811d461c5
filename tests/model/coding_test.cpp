#include "model/coding.h"

#include <gtest/gtest.h>

#include <utility>

namespace quillpost {
namespace {

using Kind = TeamworkResponse::Kind;

constexpr std::string_view minimalTask =
    R"({"id":"t1","title":"a","body":"b","state":"open","log":["c"],"resources":["d"]})";
constexpr std::string_view minimalAgent =
    R"({"id":"a1","fingerprint":"#a3f9","name":"n","status":"s","leaseSecondsRemaining":60,)"
    R"("isSelf":true,"canVerify":false,"activeClaims":1})";
constexpr std::string_view minimalFeed =
    R"({"rev":7,"changed":false,"goal":"g","goalComplete":false,"pendingGoalComplete":false,)"
    R"("changeKinds":[],"tasks":[]})";

std::string with(std::string_view key, std::string_view value) {
  return R"({"kind":"empty",")" + std::string(key) + "\":" + std::string(value) + "}";
}

/// The text without a member, which must be there and have another behind it.
std::string without(std::string text, const std::string& member) {
  const std::size_t at = text.find(member + ",");
  EXPECT_NE(at, std::string::npos) << member;
  return text.erase(at, member.size() + 1);
}

TeamworkRequest request(std::string method) {
  TeamworkRequest request;
  request.token = "secret";
  request.sessionID = "s1";
  request.method = std::move(method);
  return request;
}

// --- Requests ---------------------------------------------------------------------------------

TEST(EncodeRequest, WritesFourMembersWhenNothingElseIsSet) {
  EXPECT_EQ(encodeRequest(request("heartbeat")),
            R"({"protocolVersion":1,"token":"secret","sessionID":"s1","method":"heartbeat"})");
}

TEST(EncodeRequest, WritesAFalseFlagAZeroAndEmptyValuesThatWereSet) {
  TeamworkRequest update = request("update_task");
  update.priority = 0;
  update.taskType = "";
  update.blocked = false;
  update.waitsOn.emplace();
  EXPECT_EQ(encodeRequest(update),
            R"({"protocolVersion":1,"token":"secret","sessionID":"s1","method":"update_task",)"
            R"("priority":0,"taskType":"","blocked":false,"waitsOn":[]})");
}

TEST(EncodeRequest, WritesTextsAsTheyAreOnOneLine) {
  TeamworkRequest comment = request("comment_task");
  comment.note = "  a\nb\t\"c\\d\" /e/ — é 😀 ";
  comment.tags = {"human", ""};
  EXPECT_EQ(encodeRequest(comment),
            R"({"protocolVersion":1,"token":"secret","sessionID":"s1","method":"comment_task",)"
            R"("note":"  a\nb\t\"c\\d\" /e/ — é 😀 ","tags":["human",""]})");
}

TEST(EncodeRequest, GivesNothingWhenATextIsNotUtf8) {
  for (const std::string_view bytes : {"\xff", "caf\xc3", "\x80", "\xed\xa0\x80", "a\xc0\x80z"}) {
    TeamworkRequest unsendable = request("heartbeat");
    unsendable.token = bytes;
    EXPECT_EQ(encodeRequest(unsendable), std::nullopt);
    unsendable = request("heartbeat");
    unsendable.sessionID = bytes;
    EXPECT_EQ(encodeRequest(unsendable), std::nullopt);
    unsendable = request("heartbeat");
    unsendable.tags = {"fine", std::string(bytes)};
    EXPECT_EQ(encodeRequest(unsendable), std::nullopt);
  }
}

TEST(DecodeRequest, ReadsWhatWasEncoded) {
  TeamworkRequest poll = request("poll_changes");
  poll.sinceRev = 9223372036854775807;
  poll.holdMs = 5000;
  poll.wakeOnStateChanges = false;
  poll.taskIDs = {"t1", "t2"};
  const std::optional<std::string> line = encodeRequest(poll);
  ASSERT_TRUE(line);
  EXPECT_EQ(decodeRequest(*line), poll);
  EXPECT_EQ(decodeRequest(*line + "\n"), poll);
}

TEST(DecodeRequest, GivesNothingForAnythingLess) {
  EXPECT_EQ(decodeRequest(R"({"protocolVersion":1,"token":"t","sessionID":"s"})"), std::nullopt);
  EXPECT_EQ(decodeRequest(R"({"token":"t","sessionID":"s","method":"m"})"), std::nullopt);
  EXPECT_EQ(decodeRequest(""), std::nullopt);
}

// --- Responses --------------------------------------------------------------------------------

TEST(DecodeResponse, NeedsOnlyAKind) {
  EXPECT_EQ(decodeResponse(R"({"kind":"empty"})"), TeamworkResponse{});
  EXPECT_EQ(decodeResponse("{\"kind\":\"empty\"}\n"), TeamworkResponse{});
  EXPECT_EQ(decodeResponse("{}"), std::nullopt);
  EXPECT_EQ(decodeResponse(R"({"rev":1,"message":"m"})"), std::nullopt);
  EXPECT_EQ(decodeResponse(R"({"kind":null})"), std::nullopt);
}

TEST(DecodeResponse, KnowsAKindOnlyByItsExactWord) {
  const std::optional<TeamworkResponse> registered = decodeResponse(R"({"kind":"registered"})");
  ASSERT_TRUE(registered);
  EXPECT_EQ(registered->kind, Kind::registered);
  for (const std::string_view word : {"register", "Registered", "", "registered ", "unknown"})
    EXPECT_EQ(decodeResponse(R"({"kind":")" + std::string(word) + "\"}"), std::nullopt) << word;
}

TEST(DecodeResponse, GivesNothingForWhatIsNotAnObject) {
  for (const std::string_view reply :
       {"", " ", "null", "[]", R"([{"kind":"empty"}])", R"("empty")", R"({"kind":"empty")",
        R"({"kind":"empty"}{"kind":"empty"})", R"({"kind":"empty"} x)", "not json"})
    EXPECT_EQ(decodeResponse(std::string(reply)), std::nullopt) << reply;
}

TEST(DecodeResponse, TakesAnySubsetWithAnyKind) {
  const std::optional<TeamworkResponse> response = decodeResponse(
      R"({"kind":"error","threadTag":"T-abc123","rev":12,"wakePending":true,"notice":"n",)"
      R"("panes":[{"handle":"KQ3"}],"agent":)" +
      std::string(minimalAgent) + "}");
  ASSERT_TRUE(response);
  EXPECT_EQ(response->kind, Kind::error);
  EXPECT_EQ(response->threadTag, "T-abc123");
  EXPECT_EQ(response->rev, 12);
  EXPECT_EQ(response->wakePending, true);
  EXPECT_EQ(response->notice, "n");
  EXPECT_EQ(response->panes, (std::vector<TeamworkPane>{{"KQ3"}}));
  ASSERT_TRUE(response->agent);
  EXPECT_EQ(response->agent->name, "n");
  EXPECT_EQ(response->message, std::nullopt);
}

TEST(DecodeResponse, FailsForAnOptionalKeyOfTheWrongType) {
  for (const auto& [key, value] :
       std::initializer_list<std::pair<std::string_view, std::string_view>>{
           {"agent", "[]"},
           {"agents", "{}"},
           {"tasks", R"([{"id":"t1"}])"},
           {"task", "\"t1\""},
           {"message", "1"},
           {"rev", "\"12\""},
           {"rev", "1.5"},
           {"wakePending", "1"},
           {"threadTag", "null,\"rev\":true"},
           {"obligations", "[]"},
           {"audience", R"({"shared":0})"},
       })
    EXPECT_EQ(decodeResponse(with(key, value)), std::nullopt) << key << " = " << value;
}

TEST(DecodeResponse, FillsATaskThatHoldsOnlyWhatItMust) {
  const std::optional<TeamworkResponse> response = decodeResponse(with("task", minimalTask));
  ASSERT_TRUE(response && response->task);
  const TeamworkTask& task = *response->task;
  EXPECT_FALSE(task.blocked);
  EXPECT_TRUE(task.ready);
  EXPECT_TRUE(task.discussions.empty());
  EXPECT_TRUE(task.watchers.empty());
  EXPECT_TRUE(task.waitsOn.empty());
  EXPECT_EQ(task.unresolvedWaitsOn, std::nullopt);
  EXPECT_EQ(task.ownerFingerprint, std::nullopt);
  EXPECT_EQ(task.priority, 0);
  EXPECT_EQ(task.log, std::vector<std::string>{"c"});
}

TEST(DecodeResponse, FailsForATaskWithoutALog) {
  EXPECT_EQ(decodeResponse(with("task", without(std::string(minimalTask), R"("log":["c"])"))),
            std::nullopt);
  EXPECT_EQ(
      decodeResponse(with("tasks", "[" + std::string(minimalTask) + "," +
                                       without(std::string(minimalTask), R"("id":"t1")") + "]")),
      std::nullopt);
}

TEST(DecodeResponse, FillsAnAgentWithoutAuthorityAndHandle) {
  const std::optional<TeamworkResponse> response = decodeResponse(with("agent", minimalAgent));
  ASSERT_TRUE(response && response->agent);
  EXPECT_EQ(response->agent->authority, "contributor");
  EXPECT_EQ(response->agent->handle, "");
  EXPECT_FALSE(response->agent->idle);
  EXPECT_FALSE(response->agent->stoodDown);
}

TEST(DecodeResponse, TakesAFeedWithoutItsListsForOneWithEmptyLists) {
  std::string longer(minimalFeed);
  longer.insert(longer.size() - 1, R"(,"changes":[],"wakeReasons":[],"messages":[])");
  const std::optional<TeamworkResponse> brief = decodeResponse(with("changes", minimalFeed));
  ASSERT_TRUE(brief && brief->changes);
  EXPECT_EQ(decodeResponse(with("changes", longer)), brief);
  EXPECT_EQ(decodeResponse(with("changes", without(longer, R"("changeKinds":[])"))), std::nullopt);
}

TEST(DecodeResponse, TakesObligationsWithoutAWordForClear) {
  const std::optional<TeamworkResponse> response = decodeResponse(with("obligations", "{}"));
  ASSERT_TRUE(response && response->obligations);
  EXPECT_TRUE(response->obligations->clear);
  EXPECT_EQ(*response->obligations, TeamworkObligations{});
}

TEST(DecodeResponse, ReadsTheDeepestRecord) {
  const std::string discussion =
      R"({"id":"d000001","question":"q","state":"open","openedBy":"o","addressedTo":[],)"
      R"("volleys":[{"author":"x","body":"y","atMs":1718000000000}],"owingParties":[],)"
      R"("volleysSinceHuman":1,"escalated":false})";
  std::string task(minimalTask);
  task.insert(task.size() - 1, R"(,"discussions":[)" + discussion + "]");
  std::string feed(minimalFeed);
  feed.replace(feed.find("\"tasks\":[]"), 10, "\"tasks\":[" + task + "]");
  const std::optional<TeamworkResponse> response = decodeResponse(with("changes", feed));
  ASSERT_TRUE(response && response->changes);
  const auto& volley = response->changes->tasks.at(0).discussions.at(0).volleys.at(0);
  EXPECT_EQ(volley.author, "x");
  EXPECT_EQ(volley.atMs, 1718000000000);
}

TEST(EncodeResponse, LeavesOutWhatHasNoValue) {
  TeamworkResponse response;
  EXPECT_EQ(encodeResponse(response), R"({"kind":"empty"})");
  response.kind = Kind::written;
  response.message = "";
  response.wakePending = false;
  response.tasks.emplace();
  EXPECT_EQ(encodeResponse(response),
            R"({"kind":"written","tasks":[],"message":"","wakePending":false})");
}

TEST(EncodeResponse, GivesNothingWhenATextIsNotUtf8) {
  TeamworkResponse response;
  response.message = "\xff";
  EXPECT_EQ(encodeResponse(response), std::nullopt);
}

TEST(EncodeSparsely, LeavesOutWhatAMissingKeySaysAsWell) {
  TeamworkResponse response;
  response.task.emplace();
  response.task->id = "t1";
  EXPECT_EQ(encodeSparsely(response),
            R"({"kind":"empty","task":{"id":"t1","title":"","body":"","state":"","log":[],)"
            R"("resources":[]}})");
  response.task->ready = false;
  response.task->priority = 3;
  const std::optional<std::string> json = encodeSparsely(response);
  ASSERT_TRUE(json);
  EXPECT_EQ(decodeResponse(*json), response);
}

// --- The ask marker's payload -----------------------------------------------------------------

TEST(EncodeHumanAsk, SortsTheKeysAndLeavesOutWhatIsAbsent) {
  EXPECT_EQ(encodeHumanAsk({.k = "approval", .o = {}, .s = {}, .a = {}, .c = {}}),
            R"({"k":"approval"})");
  EXPECT_EQ(encodeHumanAsk({.k = "decision",
                            .o = std::vector<std::string>{"yes/no", "é \"q\""},
                            .s = "API_KEY",
                            .a = "https://x/y",
                            .c = ""}),
            R"({"a":"https://x/y","c":"","k":"decision","o":["yes/no","é \"q\""],"s":"API_KEY"})");
}

}  // namespace
}  // namespace quillpost
