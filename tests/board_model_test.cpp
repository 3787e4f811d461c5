// The board by chance: random sessions of ten seats against its rules and its file. At every step
// the judge holds them to what must never break: one owner at most, READY exactly when the waits
// are done, no wake and no message lost or told twice, nothing claimable unannounced, revisions
// forward, and everything there again after the program is killed.
//
//   board_model_test                           the sessions of every change
//   board_model_test --sessions=100000         a longer run
//   board_model_test --seed=N --sessions=1     one session again; tells what happened in it

#include "base/text.h"
#include "board_model/session.h"
#include "harness/sanitized.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace quillpost::board_model {
namespace {

/// Which sessions are played: `sessions` of them, each by the seed after the last one's.
struct Run {
  uint64_t seed = 1;
  uint64_t sessions = QUILLPOST_SANITIZED ? 300 : 2'000;
};
Run run;

/// So many sessions reach everything that a board is for.
constexpr uint64_t enoughSessions = 1'000;

void expectAll(const Tally& tally) {
  for (const std::string_view what :
       {"add_task",           "claim_task",    "complete_task",   "update_task",
        "release_task",       "comment_task",  "delete_task",     "reject_task",
        "request_review",     "verify_task",   "open_discussion", "reply_discussion",
        "resolve_discussion", "send_message",  "unregister",      "kills",
        "wakes read",         "messages read", "person_restore",  "person_answer"}) {
    EXPECT_TRUE(tally.contains(std::string(what))) << what;
  }
}

TEST(BoardModel, BreaksNoRuleInAnySession) {
  std::printf("seeds %llu to %llu\n", static_cast<unsigned long long>(run.seed),
              static_cast<unsigned long long>(run.seed + run.sessions - 1));
  Tally tally;
  for (uint64_t seed = run.seed; seed < run.seed + run.sessions; ++seed) {
    const std::optional<std::string> wrong = playSession(seed, tally);
    if (wrong) {
      std::string trace;
      playSession(seed, tally, &trace);
      ADD_FAILURE() << *wrong << "\nagain with --seed=" << seed << " --sessions=1\n" << trace;
      break;
    }
  }
  if (run.sessions == 1) {
    std::string trace;
    playSession(run.seed, tally, &trace);
    std::puts(trace.c_str());
  }
  for (const auto& [what, count] : tally)
    std::printf("%10lld %s\n", static_cast<long long>(count), what.c_str());
  if (run.sessions >= enoughSessions) expectAll(tally);
}

}  // namespace

/// Takes our own flags. False for one that nobody knows.
static bool readFlags(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    const std::string_view flag = arguments[i];
    const std::size_t equals = flag.find('=');
    const std::optional<int64_t> number =
        text::parseInteger(equals == std::string_view::npos ? "" : flag.substr(equals + 1));
    if (!number || *number < 0) return false;
    if (flag.starts_with("--seed=")) {
      run.seed = static_cast<uint64_t>(*number);
    } else if (flag.starts_with("--sessions=")) {
      run.sessions = static_cast<uint64_t>(*number);
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace quillpost::board_model

int main(int count, char** arguments) {
  ::testing::InitGoogleTest(&count, arguments);
  if (!quillpost::board_model::readFlags(count, arguments)) {
    std::fputs("usage: board_model_test [--seed=N] [--sessions=N]\n", stderr);
    return 2;
  }
  return RUN_ALL_TESTS();
}
