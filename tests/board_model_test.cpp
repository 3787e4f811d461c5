// The board by chance: random sessions of ten seats against its rules and its file. At every step
// the judge holds them to what must never break: one owner at most, READY exactly when the waits
// are done, no wake and no message lost or told twice, nothing claimable unannounced, revisions
// forward, and everything there again after the program is killed. Each session ends in a calm, in
// which what is owed arrives and what can be done gets done.
//
//   board_model_test                           the sessions of every change
//   board_model_test --sessions=100000         a longer run
//   board_model_test --seed=N --sessions=1     one session again; tells what happened in it

#include "board_model/session.h"
#include "harness/chance.h"
#include "harness/sanitized.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost::board_model {
namespace {

/// As many are played with every change.
constexpr uint64_t usualSessions = QUILLPOST_SANITIZED ? 150 : 2'000;

/// So many sessions reach everything that a board is for.
constexpr uint64_t enoughSessions = 1'000;

void expectAll(const Tally& tally) {
  for (const std::string_view what :
       {"add_task",           "claim_task",    "complete_task",   "update_task",
        "release_task",       "comment_task",  "delete_task",     "reject_task",
        "request_review",     "verify_task",   "open_discussion", "reply_discussion",
        "resolve_discussion", "send_message",  "unregister",      "kills",
        "wakes read",         "messages read", "person_restore",  "person_answer",
        "done in the calm"}) {
    EXPECT_TRUE(tally.contains(std::string(what))) << what;
  }
}

TEST(BoardModel, BreaksNoRuleInAnySession) {
  Tally tally;
  const uint64_t sessions = testing::playByChance(usualSessions, tally, playSession);
  if (sessions >= enoughSessions) expectAll(tally);
}

}  // namespace
}  // namespace quillpost::board_model
