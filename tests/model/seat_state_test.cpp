#include "model/seat_state.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillpost {
namespace {

using Kind = TeamworkResponse::Kind;

constexpr Kind everyKind[] = {Kind::registered, Kind::agents,  Kind::tasks,      Kind::task,
                              Kind::plan,       Kind::changes, Kind::discussion, Kind::wake,
                              Kind::written,    Kind::empty,   Kind::error};

TeamworkResponse answerOf(Kind kind) {
  TeamworkResponse answer;
  answer.kind = kind;
  return answer;
}

TeamworkObligations owing(std::string discussionID) {
  TeamworkObligations obligations;
  obligations.clear = false;
  obligations.oweReply.emplace_back().discussionID = std::move(discussionID);
  return obligations;
}

TeamworkAudience peers(int64_t count) {
  TeamworkAudience audience;
  audience.otherLocalAgents = count;
  return audience;
}

TeamworkAgent agent(std::string fingerprint, std::string handle) {
  TeamworkAgent agent;
  agent.fingerprint = std::move(fingerprint);
  agent.handle = std::move(handle);
  return agent;
}

/// A state in which everything has been seen.
SeatState seenAll() {
  SeatState state;
  state.lastSeenRev = 41;
  state.hasCursor = true;
  state.selfFingerprint = "#a3f9";
  state.selfHandle = "KQ3";
  state.lastObligations = owing("d000001");
  state.lastAudience = peers(2);
  state.clientProfile = TeamworkClientProfile::Profile::codex;
  state.waitSeq = 5;
  return state;
}

void expectSame(const SeatState& state, const SeatState& expected) {
  EXPECT_EQ(state.lastSeenRev, expected.lastSeenRev);
  EXPECT_EQ(state.hasCursor, expected.hasCursor);
  EXPECT_EQ(state.selfFingerprint, expected.selfFingerprint);
  EXPECT_EQ(state.selfHandle, expected.selfHandle);
  EXPECT_EQ(state.lastObligations, expected.lastObligations);
  EXPECT_EQ(state.lastAudience, expected.lastAudience);
  EXPECT_EQ(state.clientProfile, expected.clientProfile);
  EXPECT_EQ(state.waitSeq, expected.waitSeq);
}

TEST(SeatState, KnowsNothingAtFirst) {
  const SeatState state;
  EXPECT_EQ(state.lastSeenRev, 0);
  EXPECT_FALSE(state.hasCursor);
  EXPECT_EQ(state.selfFingerprint, std::nullopt);
  EXPECT_EQ(state.selfHandle, std::nullopt);
  EXPECT_EQ(state.lastObligations, std::nullopt);
  EXPECT_EQ(state.lastAudience, std::nullopt);
  EXPECT_EQ(state.clientProfile, TeamworkClientProfile::Profile::unknown);
  EXPECT_EQ(state.waitSeq, 0);
}

TEST(AbsorbClientName, TakesTheProfileAndNothingElse) {
  SeatState state = seenAll();
  SeatState expected = seenAll();
  absorbClientName(state, "Cursor");
  expected.clientProfile = TeamworkClientProfile::Profile::cursor;
  expectSame(state, expected);
  absorbClientName(state, "somebody else");
  expected.clientProfile = TeamworkClientProfile::Profile::unknown;
  expectSame(state, expected);
}

TEST(AbsorbAnswer, KeepsWhatTheAnswerDoesNotMention) {
  for (const Kind kind : everyKind) {
    if (kind == Kind::changes) continue;
    SCOPED_TRACE(json::wordFor(kind));
    SeatState state = seenAll();
    absorbAnswer(state, answerOf(kind));
    expectSame(state, seenAll());
  }
}

TEST(AbsorbAnswer, TakesRevisionObligationsAndAudienceFromAnyKind) {
  for (const Kind kind : everyKind) {
    SCOPED_TRACE(json::wordFor(kind));
    TeamworkResponse answer = answerOf(kind);
    answer.rev = 7;
    answer.obligations = owing("d000002");
    answer.audience = peers(9);
    SeatState state;
    absorbAnswer(state, answer);
    EXPECT_EQ(state.lastSeenRev, 7);
    EXPECT_TRUE(state.hasCursor);
    EXPECT_EQ(state.lastObligations, owing("d000002"));
    EXPECT_EQ(state.lastAudience, peers(9));
  }
}

TEST(AbsorbAnswer, TakesARevisionThatIsLowerOrZero) {
  TeamworkResponse answer = answerOf(Kind::written);
  SeatState state = seenAll();
  answer.rev = 3;
  absorbAnswer(state, answer);
  EXPECT_EQ(state.lastSeenRev, 3);

  state = {};
  answer.rev = 0;
  absorbAnswer(state, answer);
  EXPECT_EQ(state.lastSeenRev, 0);
  EXPECT_TRUE(state.hasCursor);
}

TEST(AbsorbAnswer, TakesObligationsThatAreClear) {
  TeamworkResponse answer = answerOf(Kind::written);
  answer.obligations.emplace();
  SeatState state = seenAll();
  absorbAnswer(state, answer);
  EXPECT_EQ(state.lastObligations, TeamworkObligations());
  EXPECT_EQ(state.lastAudience, peers(2));
}

TEST(AbsorbAnswer, TakesTheCallersIdentityFromItsOwnRegistration) {
  TeamworkResponse answer = answerOf(Kind::registered);
  answer.agent = agent("#b001", "ZZ9");
  SeatState state;
  absorbAnswer(state, answer);
  EXPECT_EQ(state.selfFingerprint, "#b001");
  EXPECT_EQ(state.selfHandle, "ZZ9");
}

TEST(AbsorbAnswer, KeepsTheHandleWhenTheAgentComesWithout) {
  TeamworkResponse answer = answerOf(Kind::registered);
  answer.agent = agent("#b001", "");
  SeatState state = seenAll();
  absorbAnswer(state, answer);
  EXPECT_EQ(state.selfFingerprint, "#b001");
  EXPECT_EQ(state.selfHandle, "KQ3");

  state = {};
  absorbAnswer(state, answer);
  EXPECT_EQ(state.selfHandle, std::nullopt);
}

TEST(AbsorbAnswer, TakesNoIdentityFromAnAgentInAnotherKindOfAnswer) {
  for (const Kind kind : everyKind) {
    if (kind == Kind::registered) continue;
    SCOPED_TRACE(json::wordFor(kind));
    TeamworkResponse answer = answerOf(kind);
    answer.agent = agent("#b001", "ZZ9");
    SeatState state = seenAll();
    absorbAnswer(state, answer);
    EXPECT_EQ(state.selfFingerprint, "#a3f9");
    EXPECT_EQ(state.selfHandle, "KQ3");
  }
}

TEST(AbsorbAnswer, CountsAnAnswerThatIsShownAsAWaitsOutcome) {
  for (const Kind kind : everyKind) {
    SCOPED_TRACE(json::wordFor(kind));
    SeatState state = seenAll();
    absorbAnswer(state, answerOf(kind));
    EXPECT_EQ(state.waitSeq, kind == Kind::changes ? 6 : 5);
  }
}

TEST(AbsorbAnswer, TakesNoRevisionFromAFeed) {
  TeamworkResponse answer = answerOf(Kind::changes);
  answer.changes.emplace().rev = 99;
  SeatState state = seenAll();
  absorbAnswer(state, answer);
  EXPECT_EQ(state.lastSeenRev, 41);
}

TEST(AbsorbFeed, TakesTheFeedsRevisionObligationsAndAudience) {
  TeamworkResponse answer = answerOf(Kind::changes);
  answer.rev = 1;
  answer.changes.emplace().rev = 99;
  answer.obligations = owing("d000002");
  answer.audience = peers(9);
  SeatState state;
  absorbFeed(state, answer);
  EXPECT_EQ(state.lastSeenRev, 99);
  EXPECT_TRUE(state.hasCursor);
  EXPECT_EQ(state.lastObligations, owing("d000002"));
  EXPECT_EQ(state.lastAudience, peers(9));
  EXPECT_EQ(state.waitSeq, 0) << "one poll of many is no outcome";
}

TEST(AbsorbFeed, KeepsWhatTheAnswerDoesNotMention) {
  TeamworkResponse answer = answerOf(Kind::changes);
  answer.changes.emplace().rev = 99;
  answer.agent = agent("#b001", "ZZ9");
  SeatState state = seenAll();
  absorbFeed(state, answer);
  SeatState expected = seenAll();
  expected.lastSeenRev = 99;
  expectSame(state, expected);
}

TEST(AbsorbFeed, TakesNothingFromAnAnswerWithoutAFeed) {
  TeamworkResponse answer = answerOf(Kind::changes);
  answer.rev = 99;
  answer.obligations = owing("d000002");
  answer.audience = peers(9);
  SeatState state = seenAll();
  absorbFeed(state, answer);
  expectSame(state, seenAll());
}

TEST(AbsorbWaitEnd, CountsOneOutcomeAndChangesNothingElse) {
  SeatState state = seenAll();
  absorbWaitEnd(state);
  SeatState expected = seenAll();
  expected.waitSeq = 6;
  expectSame(state, expected);
}

TEST(AbsorbWaitEnd, StaysAtTheHighestCount) {
  SeatState state;
  state.waitSeq = std::numeric_limits<int64_t>::max();
  absorbWaitEnd(state);
  EXPECT_EQ(state.waitSeq, std::numeric_limits<int64_t>::max());
}

SeatState at(int64_t rev) {
  SeatState state;
  state.lastSeenRev = rev;
  state.hasCursor = true;
  return state;
}

int64_t revisionLearnt(SeatState state, const SeatState& before, const SeatState& after,
                       bool isOfOtherBoard = false) {
  absorbLesson(state, {.before = before, .after = after, .isOfOtherBoard = isOfOtherBoard});
  EXPECT_TRUE(state.hasCursor);
  return state.lastSeenRev;
}

TEST(AbsorbLesson, TakesTheLaterOfTwoRevisions) {
  EXPECT_EQ(revisionLearnt(at(10), at(10), at(12)), 12);
  EXPECT_EQ(revisionLearnt(at(15), at(10), at(12)), 15) << "a quicker process has seen more";
  EXPECT_EQ(revisionLearnt({}, {}, at(3)), 3);
  EXPECT_EQ(revisionLearnt({}, {}, at(-3)), -3) << "without a revision there is none to keep";
  EXPECT_EQ(revisionLearnt(at(5), at(5), at(5)), 5);
}

TEST(AbsorbLesson, BelievesABoardThatHasGoneBack) {
  EXPECT_EQ(revisionLearnt(at(400), at(400), at(5)), 5);
  EXPECT_EQ(revisionLearnt(at(500), at(400), at(5)), 5) << "whatever others have seen before";
  EXPECT_EQ(revisionLearnt(at(7), at(400), at(5)), 7) << "another process noticed it first";
}

TEST(AbsorbLesson, TakesTheRevisionOfAnotherBoardWhateverItIs) {
  EXPECT_EQ(revisionLearnt(at(400), at(3), at(5)), 400);
  EXPECT_EQ(revisionLearnt(at(400), at(3), at(5), true), 5);
}

TEST(AbsorbLesson, LearnsNoRevisionWhereThereWasNone) {
  EXPECT_EQ(revisionLearnt(at(10), {}, {}), 10);
  EXPECT_EQ(revisionLearnt(at(10), {}, {}, true), 10);
  SeatState state;
  absorbLesson(state, {.before = {}, .after = {}});
  EXPECT_FALSE(state.hasCursor);
}

TEST(AbsorbLesson, LeavesAloneWhatWasOnlyRemembered) {
  SeatState state = seenAll(), after = seenAll();
  state.selfHandle = "NEW";
  state.selfFingerprint = "#b001";
  state.lastObligations = owing("d000009");
  state.lastAudience = peers(7);
  state.clientProfile = TeamworkClientProfile::Profile::cursor;
  const SeatState expected = state;
  absorbLesson(state, {.before = seenAll(), .after = after});
  expectSame(state, expected);
}

TEST(AbsorbLesson, TakesWhatWasLearntAnewButTheProfile) {
  SeatState state = seenAll(), after = seenAll();
  after.selfHandle = "NEW";
  after.selfFingerprint = "#b001";
  after.lastObligations = owing("d000009");
  after.lastAudience = peers(7);
  SeatState expected = after;
  after.clientProfile = TeamworkClientProfile::Profile::cursor;
  absorbLesson(state, {.before = seenAll(), .after = after});
  expectSame(state, expected);
}

TEST(AbsorbLesson, AddsTheWaitsUpAndNeverTakesOneBack) {
  SeatState state = seenAll(), after = seenAll();
  state.waitSeq = 9;
  after.waitSeq = 7;
  absorbLesson(state, {.before = seenAll(), .after = after});
  EXPECT_EQ(state.waitSeq, 11);
  after.waitSeq = 1;
  absorbLesson(state, {.before = seenAll(), .after = after});
  EXPECT_EQ(state.waitSeq, 11);
  after.waitSeq = state.waitSeq = std::numeric_limits<int64_t>::max();
  absorbLesson(state, {.before = {}, .after = after});
  EXPECT_EQ(state.waitSeq, std::numeric_limits<int64_t>::max());
}

}  // namespace
}  // namespace quillpost
