#include "bench/samples.h"

#include "base/text.h"
#include "model/coding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string_view>
#include <utility>

namespace quillpost::bench {
namespace {

constexpr std::array<std::string_view, 40> words = {
    "the",    "parser",   "reads", "a",     "reply",    "and",    "keeps",  "its",
    "cursor", "while",    "board", "moves", "on",       "branch", "export", "settings",
    "cache",  "is",       "warm",  "tests", "cover",    "both",   "paths",  "window",
    "layout", "breaks",   "when",  "font",  "size",     "grows",  "merge",  "after",
    "review", "worktree", "draft", "done",  "“quoted”", "—",      "naïve",  "🚀"};

/// Words and numbers from one fixed seed, alike on every system.
class Dice {
 public:
  std::size_t below(std::size_t bound) { return random_() % bound; }
  bool oneIn(std::size_t chances) { return below(chances) == 0; }

  /// So many words, the rarer ones beyond ASCII among them in about one of fifty.
  std::string sentence(std::size_t length) {
    std::string sentence;
    for (std::size_t i = 0; i < length; ++i) {
      if (i > 0) sentence += ' ';
      const std::size_t common = words.size() - 4;
      sentence += words[oneIn(50) ? common + below(4) : below(common)];
    }
    return sentence;
  }

 private:
  std::minstd_rand random_{1};
};

std::string fingerprint(std::size_t number) {
  return text::cat("#a3f", std::to_string(number % 10));
}

std::string taskID(std::size_t number) { return text::cat("t", std::to_string(100000 + number)); }

std::vector<std::string> taskLog(Dice& dice) {
  std::vector<std::string> log;
  log.push_back(text::cat("[[gist]] ", dice.sentence(14)));
  log.push_back(dice.sentence(16));
  if (!dice.oneIn(3)) log.push_back(dice.sentence(18));
  if (dice.oneIn(8)) log.push_back(text::cat("[[for]] ", dice.sentence(10)));
  return log;
}

TeamworkTask task(std::size_t number, Dice& dice) {
  TeamworkTask task;
  task.id = taskID(number);
  task.title = dice.sentence(8);
  for (int line = 0; line < 5; ++line) task.body += dice.sentence(12) + "\n";
  task.state = "open";
  task.log = taskLog(dice);
  task.priority = static_cast<int64_t>(dice.below(3));
  task.type = dice.oneIn(2) ? "feature" : "bug";
  task.resources = {text::cat("src/", words[dice.below(30)]), "docs"};
  const std::size_t fate = dice.below(4);
  if (fate == 0) {
    task.state = "claimed";
    task.ownerFingerprint = fingerprint(dice.below(10));
    task.claimLeaseSecondsRemaining = 900;
    task.claimAttempts = 1;
  } else if (fate == 1) {
    task.state = "done";
  }
  if (number > 2 && dice.oneIn(5)) {
    task.waitsOn = {taskID(number - 1), taskID(number - 2)};
    task.ready = false;
  }
  if (fate != 1 && dice.oneIn(12)) {
    task.blocked = true;
    task.blockerQuestion = dice.sentence(14);
  }
  return task;
}

TeamworkDiscussion discussion(std::size_t number, Dice& dice) {
  TeamworkDiscussion discussion;
  discussion.id = text::cat("d", std::to_string(100000 + number));
  discussion.question = dice.sentence(18);
  discussion.state = "open";
  discussion.openedBy = fingerprint(1);
  discussion.addressedTo = {fingerprint(2)};
  for (int i = 0; i < 4; ++i) discussion.volleys.push_back({fingerprint(2), dice.sentence(40), 1});
  discussion.owingParties = {fingerprint(2)};
  discussion.volleysSinceHuman = 4;
  return discussion;
}

std::string taskReply(std::vector<TeamworkTask> tasks) {
  TeamworkResponse response;
  response.kind = TeamworkResponseKind::tasks;
  response.tasks = std::move(tasks);
  response.obligations.emplace();
  response.audience.emplace();
  response.rev = 4711;
  response.threadTag = "T-q7x2k9";
  return encodeResponse(response).value_or("");
}

}  // namespace

std::vector<TeamworkTask> backlog(std::size_t count) {
  Dice dice;
  std::vector<TeamworkTask> tasks;
  tasks.reserve(count);
  for (std::size_t i = 0; i < count; ++i) tasks.push_back(task(i, dice));
  return tasks;
}

std::string backlogReply(std::size_t count) { return taskReply(backlog(count)); }

std::string backlogReplyOfAtMost(std::size_t bytes) {
  constexpr std::size_t leastBytesOfTask = 700;
  std::vector<TeamworkTask> tasks = backlog(bytes / leastBytesOfTask);
  std::string reply = taskReply(tasks);
  while (reply.size() > bytes) {
    const std::size_t mean = reply.size() / tasks.size();
    const std::size_t surplus = std::max<std::size_t>((reply.size() - bytes) / mean, 1);
    tasks.resize(tasks.size() - surplus);
    reply = taskReply(tasks);
  }
  return reply;
}

std::string writtenReply() {
  TeamworkResponse response;
  response.kind = TeamworkResponseKind::written;
  response.message = "Progress noted.";
  response.obligations.emplace();
  response.audience.emplace();
  response.rev = 4712;
  response.threadTag = "T-q7x2k9";
  return encodeResponse(response).value_or("");
}

std::string wakeReply() {
  TeamworkResponse response;
  response.kind = TeamworkResponseKind::wake;
  response.wakePending = true;
  return encodeResponse(response).value_or("");
}

TeamworkResponse roster(std::size_t agents) {
  Dice dice;
  TeamworkResponse response;
  response.kind = TeamworkResponseKind::agents;
  response.agents.emplace();
  for (std::size_t i = 0; i < agents; ++i) {
    TeamworkAgent agent;
    agent.id = text::cat("agent-", std::to_string(i));
    agent.fingerprint = fingerprint(i);
    agent.name = dice.sentence(2);
    agent.status = dice.sentence(10);
    agent.leaseSecondsRemaining = 600;
    agent.isSelf = i == 0;
    agent.role = "builder";
    agent.handle = text::cat("KQ", std::to_string(i));
    response.agents->push_back(std::move(agent));
  }
  response.squad.emplace();
  response.squad->mode = "on";
  response.squad->canAddress = true;
  response.squad->canSpawn = true;
  response.squad->helpers = {{"tester", dice.sentence(12), false, true},
                             {"writer", dice.sentence(12), true, true}};
  response.squad->helperLimit = 4;
  response.squad->helpersRunning = 1;
  response.panes = {{"KX1"}, {"KX2"}};
  response.macs = {{"mini", "Mac mini", true, true, std::nullopt},
                   {"book", "MacBook", false, false, std::nullopt}};
  response.runningHelpers = {{"KH1", "tester", "running", "KQ0", 120, std::nullopt, true, {}}};
  return response;
}

TeamworkPlan plan(std::size_t discussions) {
  Dice dice;
  TeamworkPlan plan;
  plan.threadName = "Release";
  for (int line = 0; line < 20; ++line) plan.goal += dice.sentence(15) + "\n";
  plan.charter = dice.sentence(60);
  plan.goalLocked = true;
  plan.dispatched = true;
  for (std::size_t i = 0; i < discussions; ++i) plan.discussions.push_back(discussion(i, dice));
  return plan;
}

TeamworkObligations obligations() {
  TeamworkObligations obligations;
  obligations.oweReply = {{"d100001", "t100001", "Which of the two?", "#a3f2"}};
  obligations.awaitingReply = {{"d100002", std::nullopt, "Why at all?", "#a3f3"}};
  obligations.yourBlockersOpen = {"t100002"};
  obligations.mentionsToAnswer = {"t100003"};
  obligations.tasksHeld = {"t100004", "t100005"};
  obligations.staleSummaries = {{"t100004", 3, false}};
  obligations.idleHeld = {{"t100005", 0, true}};
  obligations.releaseAsks = {{"t100004", "#a3f4", "I am blocked by it."}};
  obligations.undelivered = {{"update_task", "t100004", "the app was away", false}};
  obligations.clear = false;
  return obligations;
}

}  // namespace quillpost::bench
