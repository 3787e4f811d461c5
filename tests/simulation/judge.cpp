#include "simulation/judge.h"

#include "base/text.h"
#include "calls/hold_budget.h"
#include "model/coding.h"
#include "render/texts/replies.h"
#include "render/texts/waiting.h"
#include "tools/tool_name.h"

#include <algorithm>

namespace quillpost::simulation {

using std::chrono::milliseconds;
using std::chrono::seconds;
using text::cat;
using Kind = Expectation::Kind;

void Judge::complain(std::string_view what) const { throw Complaint{std::string(what)}; }

void Judge::note(std::string_view what) {
  if (!keepsTrace) return;
  const int64_t ms = std::chrono::duration_cast<milliseconds>(scene_.clock.ran()).count();
  trace += cat(ms, " ms  ", what, "\n");
}

// What the app sees

void Judge::tokenRead(std::string_view token) { token_ = token; }

void Judge::asked(const TeamworkRequest& request) {
  require(!expected.empty(), "the app was asked though no call was running");
  require(!exchanging_, "two exchanges at once");
  require(!readerGone_, "the app was asked though the client had gone");
  exchanging_ = true;
  const std::optional<std::string> encoded = encodeRequest(request);
  require(encoded.has_value(), "a request that cannot be encoded");
  note(*encoded);
  require(encoded->find('\n') == std::string::npos, "a request of several lines");
  require(decodeRequest(*encoded) == request, "a request that reads differently");
  require(request.protocolVersion == 1, "not the version of the protocol");
  require(request.token == token_, "not the token of the moment");
  require(request.sessionID == scene_.sessionID, "not the session");
  if (expected.front().kind == Kind::call) {
    askedByCall(request, *encoded);
  } else {
    require(expected.front().kind == Kind::wait, "the app was asked by what is no tool");
    askedByWait(request);
  }
}

void Judge::askedByCall(const TeamworkRequest& request, const std::string& encoded) {
  constexpr int attempts = 3;
  require(request.method == expected.front().name, "not the tool's own name");
  require(!request.token.empty(), "a call without a token was sent");
  require(!request.taskIDs && !request.sinceRev && !request.holdMs && !request.waiting &&
              !request.standDown && !request.wakeOnStateChanges,
          "a call with what belongs to waiting");
  require(!call_.sawAnswer, "asked again though answered");
  if (call_.attempts > 0) {
    require(encoded == call_.request, "another try with another request");
    require(scene_.clock.ran() - call_.over == milliseconds(150), "not the pause between tries");
  }
  call_.request = encoded;
  ++call_.attempts;
  require(call_.attempts <= attempts, "one try too many");
}

void Judge::beginWait() {
  const Expectation& expectation = expected.front();
  const HoldSettings settings = readHoldSettings(scene_.environment);
  const int64_t budget = holdBudget(state->clientProfile, settings);
  const std::optional<int64_t> timeout =
      expectation.wait ? expectation.wait->timeoutSeconds : std::nullopt;
  const Duration hold = seconds(holdFor(timeout, budget).seconds.value_or(0));
  wait_.begun = true;
  wait_.deadline = scene_.clock.instant() + hold;
  wait_.deadlineInOrder = scene_.clock.ran() + hold;
  if (expectation.wait) wait_.cursor = expectation.wait->sinceRev.value_or(rev_);
}

void Judge::askedByWait(const TeamworkRequest& request) {
  constexpr Duration rest = seconds(2);
  require(!scene_.sessionID.empty(), "a wait outside a Thread asked the app");
  require(!wait_.mustEnd, "a wait went on after what ends it");
  const bool isFirst = !wait_.begun;
  if (isFirst) beginWait();
  const Duration now = scene_.clock.ran();
  // A round is a heartbeat, when one is due, and a poll.
  if (request.method == heartbeat || wait_.method != heartbeat) {
    wait_.roundStart = now;
    require(now < wait_.deadlineInOrder + rest, "a wait went on beyond its hold");
  }
  if (wait_.pollEnd)
    require(*wait_.pollEnd < wait_.deadlineInOrder, "a wait polled again after its hold");
  require(!isFirst || request.method == heartbeat, "a wait that did not begin with a heartbeat");
  if (request.method == heartbeat) {
    checkHeartbeat(request);
  } else {
    require(request.method == pollChanges, "a wait that asked for something else");
    checkPoll(request);
  }
  wait_.method = request.method;
}

void Judge::checkHeartbeat(const TeamworkRequest& request) {
  if (wait_.heartbeat)
    require(scene_.clock.instant() - wait_.heartbeatAt >= seconds(20), "a heartbeat too early");
  TeamworkRequest known;
  known.token = request.token;
  known.sessionID = request.sessionID;
  known.method = request.method;
  known.waiting = true;
  const std::optional<AskedWait>& asked = expected.front().wait;
  known.standDown = asked ? std::optional(asked->standDown) : request.standDown;
  known.parkReason = asked ? asked->parkReason : request.parkReason;
  require(request == known && request.standDown, "a heartbeat with something else in it");
  ++tally_["heartbeats"];
}

void Judge::checkPoll(const TeamworkRequest& request) {
  const Duration now = scene_.clock.ran();
  require(wait_.heartbeat && now - *wait_.heartbeat < seconds(20), "a heartbeat is overdue");
  if (expected.front().progressToken)
    require(wait_.progress && now - *wait_.progress < seconds(5), "a progress note is overdue");
  // By the clock as it jumps: a jump during a poll makes it a slow one, after which none rests.
  if (wait_.pollAt)
    require(scene_.clock.instant() - *wait_.pollAt >= milliseconds(500),
            "the app is flooded with polls");
  if (now >= wait_.deadlineInOrder) ++wait_.pollsAfterDeadline;
  require(wait_.pollsAfterDeadline <= 1, "several polls after the hold");

  TeamworkRequest known;
  known.token = request.token;
  known.sessionID = request.sessionID;
  known.method = request.method;
  known.sinceRev = wait_.cursor ? wait_.cursor : request.sinceRev;
  known.holdMs = request.holdMs;
  known.taskIDs = request.taskIDs;
  known.wakeOnStateChanges = request.wakeOnStateChanges;
  if (const std::optional<AskedWait>& asked = expected.front().wait) {
    known.wakeOnStateChanges = asked->wakeOnClaims;
    known.taskIDs.reset();
    if (!asked->taskIDs.empty()) known.taskIDs = asked->taskIDs;
  }
  require(request == known && request.sinceRev && request.wakeOnStateChanges,
          "a poll with another cursor or something else in it");
  if (request.holdMs) {
    const Duration hold = milliseconds(*request.holdMs);
    require(*request.sinceRev >= 1, "a hold without a revision");
    require(*request.holdMs >= 200, "a hold that is not worth asking");
    require(now + hold <= wait_.deadlineInOrder, "a poll that may be held beyond the hold");
    require(now + hold <= *wait_.heartbeat + seconds(20), "a poll held beyond a heartbeat");
    require(!wait_.progress || now + hold <= *wait_.progress + seconds(5),
            "a poll held beyond a progress note");
  }
  wait_.pollAt = scene_.clock.instant();
  ++tally_["polls"];
}

void Judge::answered(const std::optional<TeamworkResponse>& response) {
  exchanging_ = false;
  note(response ? cat("  ", json::wordFor(response->kind)) : "  nothing");
  if (expected.front().kind == Kind::call) {
    call_.over = scene_.clock.ran();
    call_.sawAnswer = response.has_value();
    if (!response) return;
    call_.threadTag = response->threadTag.value_or("");
    if (response->rev) {
      rev_ = *response->rev;
      hasRev_ = true;
    }
    if (response->kind == TeamworkResponse::Kind::changes && waitSeq_ < INT64_MAX) ++waitSeq_;
    return;
  }
  if (wait_.method == heartbeat) {
    // Whatever a heartbeat is answered with says nothing to the wait.
    wait_.heartbeat = scene_.clock.ran();
    wait_.heartbeatAt = scene_.clock.instant();
  } else {
    answeredToPoll(response);
  }
}

void Judge::answeredToPoll(const std::optional<TeamworkResponse>& response) {
  wait_.pollEnd = scene_.clock.ran();
  if (!response) return;
  if (response->threadTag && !response->threadTag->empty()) wait_.threadTag = *response->threadTag;
  if (response->kind == TeamworkResponse::Kind::empty ||
      response->kind == TeamworkResponse::Kind::error) {
    wait_.mustEnd = wait_.endsInWords = true;
  }
  if (response->kind != TeamworkResponse::Kind::changes || !response->changes) return;
  const TeamworkChangeFeed& feed = *response->changes;
  rev_ = feed.rev;
  hasRev_ = true;
  wait_.cursor = feed.rev;
  wait_.feedRev = feed.rev;
  wait_.mustEnd =
      feed.goalComplete || feed.changed || !feed.wakeReasons.empty() || !feed.messages.empty();
}

// What the client sees

void Judge::wrote(std::string_view message) {
  note(cat("-> ", message.substr(0, 400)));
  require(!exchanging_, "written in the middle of an exchange");
  require(!readerGone_, "written after the client had gone");
  require(!message.empty() && message.find('\n') == message.size() - 1, "not one whole line");
  require(message.find(secretMark) == std::string_view::npos, "a token is shown");
  const std::optional<json::Tree> tree = json::parse(message.substr(0, message.size() - 1));
  const json::TreeObject* object = tree ? tree->if_object() : nullptr;
  require(object != nullptr, "a line that is not a JSON object");
  require(json::findText(*object, "jsonrpc") == "2.0", "not JSON-RPC 2.0");
  if (json::find(*object, "method") != nullptr) {
    checkProgress(*object);
  } else {
    checkAnswer(*object);
  }
}

void Judge::checkProgress(const json::TreeObject& message) {
  require(!expected.empty() && expected.front().kind == Kind::wait && wait_.begun,
          "progress without a wait");
  require(expected.front().progressToken.has_value(), "progress that nobody asked for");
  require(json::findText(message, "method") == "notifications/progress", "a strange notification");
  require(message.size() == 3 && json::find(message, "params") != nullptr, "not a notification");
  ++wait_.progressCount;
  std::string params;
  json::appendTree(params, *json::find(message, "params"));
  require(
      params == cat(R"({"progressToken":)", *expected.front().progressToken, R"(,"progress":)",
                    wait_.progressCount, R"(,"message":"Listening for changes on the board…"})"),
      "not the next progress note");
  wait_.progress = scene_.clock.ran();
  ++tally_["progress notes"];
}

void Judge::checkAnswer(const json::TreeObject& message) {
  require(!expected.empty(), "an answer that nobody asked for");
  const Expectation expectation = std::move(expected.front());
  const json::Tree* id = json::find(message, "id");
  require(id != nullptr && message.size() == 3, "an answer without its three members");
  std::string idText;
  json::appendTree(idText, *id);
  require(idText == expectation.id, "an answer out of order, or with another id");
  checkResult(expectation, message);
  checkMemory();
  expected.pop_front();
  call_ = {};
  wait_ = {};
  ++tally_["answers"];
}

void Judge::checkResult(const Expectation& expectation, const json::TreeObject& message) {
  if (expectation.kind == Kind::unknownMethod || expectation.kind == Kind::unknownTool) {
    const bool isMethod = expectation.kind == Kind::unknownMethod;
    const json::TreeObject* error = json::findObject(message, "error");
    require(error != nullptr && error->size() == 2, "not an error");
    const json::Tree* code = json::find(*error, "code");
    require(code != nullptr && *code == (isMethod ? -32601 : -32602), "not the error's code");
    require(json::findText(*error, "message") ==
                cat(isMethod ? "Method not found: " : "Unknown tool: ", expectation.name),
            "not the error's words");
    ++tally_["errors"];
    return;
  }
  const json::TreeObject* result = json::findObject(message, "result");
  require(result != nullptr, "no result");
  switch (expectation.kind) {
    case Kind::initialize:
      require(json::findText(*result, "protocolVersion") == "2024-11-05" && result->size() == 4,
              "not what initialize gives");
      break;
    case Kind::ping:
      require(result->empty(), "not what ping gives");
      break;
    case Kind::toolsList: {
      const json::Tree* tools = json::find(*result, "tools");
      require(
          tools != nullptr && tools->is_array() && tools->get_array().size() == toolNames.size(),
          "not the tools");
      break;
    }
    default: {
      const json::Tree* content = json::find(*result, "content");
      require(content != nullptr && content->is_array() && content->get_array().size() == 1,
              "not one piece of content");
      const json::TreeObject* piece = content->get_array().front().if_object();
      require(piece != nullptr && json::findText(*piece, "type") == "text", "not a text");
      const json::Tree* isError = json::find(*result, "isError");
      require(isError != nullptr && *isError == false, "a failure that is not put into words");
      checkText(expectation, json::findText(*piece, "text").value_or(""));
    }
  }
}

void Judge::checkText(const Expectation& expectation, std::string_view text) {
  // The app's own words may be none at all.
  const bool isAppsWords = call_.sawAnswer || wait_.endsInWords;
  require(!text.empty() || isAppsWords, "no words for the agent");
  const std::string& tag = expectation.kind == Kind::wait ? wait_.threadTag : call_.threadTag;
  if (!tag.empty()) {
    const std::string ending = cat("\n\n(thread ", tag, ")");
    require(text.ends_with(ending), "the Thread is not named");
    text.remove_suffix(ending.size());
  }
  if (expectation.kind == Kind::wait) {
    checkWaitText(text);
  } else {
    checkCallText(expectation, text);
  }
}

void Judge::checkCallText(const Expectation& expectation, std::string_view text) {
  if (call_.sawAnswer) {
    ++tally_["calls answered"];
  } else if (call_.attempts > 0) {
    require(call_.attempts == 3, "given up before the third try");
    require(text == texts::appUnreachable, "not the words for an app that is not reached");
    ++tally_["calls not reached"];
  } else if (token_.empty()) {
    require(text == texts::outsideThread || text.starts_with("blockerQuestion is "),
            "not the words for a terminal outside a Thread");
    ++tally_["calls without a token"];
  } else {
    require(expectation.name == "update_task" && text.starts_with("blockerQuestion is "),
            "a call that was not sent");
    ++tally_["calls refused"];
  }
}

void Judge::checkWaitText(std::string_view text) {
  if (!wait_.begun) {
    require(scene_.sessionID.empty() && text == texts::outsideThread, "a wait that did nothing");
    ++tally_["waits outside a Thread"];
    return;
  }
  require(wait_.method == pollChanges && wait_.pollEnd == scene_.clock.ran(),
          "a wait that did not end with its last poll");
  if (wait_.endsInWords) {
    ++tally_["waits ended in words"];
    return;
  }
  const bool isLong = expected.front().wait.has_value();
  require(wait_.mustEnd || !isLong || scene_.clock.instant() >= wait_.deadline,
          "a wait that ended before its hold and without news");
  ++tally_[wait_.mustEnd ? "waits ended by news" : "waits held to their end"];
  if (waitSeq_ < INT64_MAX) ++waitSeq_;
  const std::optional<json::Tree> tree = json::parse(text);
  const json::TreeObject* outcome = tree ? tree->if_object() : nullptr;
  require(outcome != nullptr, "an outcome that is not a JSON object");
  const json::Tree* sequence = json::find(*outcome, "waitSeq");
  require(sequence != nullptr && *sequence == waitSeq_, "not the number of the wait");
  const json::Tree* rev = json::find(*outcome, "rev");
  require((rev != nullptr) == wait_.feedRev.has_value(), "a revision from nowhere, or none");
  if (rev != nullptr) require(*rev == *wait_.feedRev, "not the revision of the last feed");
}

void Judge::checkMemory() const {
  require(state->lastSeenRev == rev_ && state->hasCursor == hasRev_,
          "not the cursor that the app said");
  require(state->waitSeq == waitSeq_, "not the count of the waits");
}

void Judge::refused() {
  require(!readerGone_, "a second try to write to a client that has gone");
  readerGone_ = true;
  ++tally_["clients gone"];
}

void Judge::ended() {
  require(readerGone_ || expected.empty(), "a request that was never answered");
}

}  // namespace quillpost::simulation
