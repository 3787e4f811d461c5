#include "render/obligations.h"

#include "base/text.h"
#include "render/texts/obligations.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using Audience = std::optional<TeamworkAudience>;

std::string undeliveredPhrase(const std::vector<TeamworkObligations::UndeliveredRef>& writes) {
  const int64_t refused =
      std::ranges::count(writes, true, &TeamworkObligations::UndeliveredRef::refused);
  const int64_t queued = text::countOf(writes) - refused;
  std::vector<std::string> reasons;
  if (refused > 0) reasons.push_back(texts::writesRefused(refused));
  if (queued > 0) reasons.push_back(texts::writesQueued(queued));
  return texts::writesNotLanded(text::countOf(writes), text::join(reasons, ", "));
}

std::string_view heldAdvice(const Audience& audience) {
  if (!audience) return texts::writeOrRelease;
  const bool othersAreHere =
      audience->otherDevices > 0 || audience->otherPeople > 0 || audience->otherLocalAgents > 0;
  return othersAreHere ? texts::writeOrReleaseForOthers : texts::writeOrReleaseAlone;
}

/// Who does not see yet what was written here, when there is such a person or Mac.
std::string_view readersElsewhere(const TeamworkAudience& audience) {
  if (audience.otherPeople > 1) return texts::otherPeople;
  if (audience.otherPeople == 1) return texts::otherPerson;
  return audience.otherDevices == 1 ? texts::yourOtherMac : texts::yourOtherMacs;
}

std::string undeliveredNote(const Audience& audience) {
  if (!audience) return std::string(texts::undeliveredAudienceUnknown);
  const bool nobodyElsewhere = audience->otherPeople < 1 && audience->otherDevices < 1;
  if (!nobodyElsewhere) return texts::undeliveredTo(readersElsewhere(*audience));
  return std::string(audience->otherLocalAgents < 1 ? texts::undeliveredAlone
                                                    : texts::undeliveredLocalAgents);
}

/// Adds a list that is worth a member only when it holds something.
template <class Items, class AddMembers>
void addUnlessEmpty(json::Object& out, std::string_view key, const Items& items,
                    AddMembers addMembers) {
  if (!items.empty()) out.list(key, items, addMembers);
}

void addTaskIDs(json::Object& out, std::string_view key, const std::vector<std::string>& taskIDs) {
  if (!taskIDs.empty()) out.add(key, taskIDs);
}

void addDebate(json::Object& out, const TeamworkObligations::DebateRef& debate) {
  out.add("discussionID", debate.discussionID);
  out.add("question", debate.question).add("counterpart", debate.counterpart);
  if (debate.taskID) {
    out.add("taskID", *debate.taskID);
  } else {
    out.add("scope", "board");
  }
}

void addHeldTask(json::Object& out, const TeamworkObligations::HeldRef& held,
                 const Audience& audience) {
  out.add("taskID", held.taskID);
  if (held.wroteNothingSinceClaim) {
    out.add("state", texts::heldNothingWritten).add("do", heldAdvice(audience));
    return;
  }
  out.add("summaryBehindBy", held.summaryBehindBy);
  out.add("state", texts::summaryBehind(held.summaryBehindBy)).add("do", texts::refreshSummary);
}

void addUndelivered(json::Object& out, const TeamworkObligations::UndeliveredRef& write,
                    const Audience& audience) {
  out.add("verb", write.verb).add("reason", write.reason).add("taskID", write.taskID);
  if (write.refused) {
    out.add("state", texts::writeRefused).add("do", texts::redoOrSayWhy);
  } else {
    out.add("state", texts::writeQueued).add("do", undeliveredNote(audience));
  }
}

}  // namespace

std::string summaryLine(const TeamworkObligations& obligations) {
  std::vector<std::string> phrases;
  const auto say = [&phrases](const auto& list, std::string (*phrase)(int64_t)) {
    if (!list.empty()) phrases.push_back(phrase(text::countOf(list)));
  };
  if (!obligations.undelivered.empty()) {
    phrases.push_back(undeliveredPhrase(obligations.undelivered));
  }
  say(obligations.oweReply, texts::repliesOwed);
  say(obligations.awaitingReply, texts::discussionsAwaiting);
  say(obligations.yourBlockersOpen, texts::blockersOpen);
  say(obligations.mentionsToAnswer, texts::mentionsToAnswer);
  say(obligations.tasksHeld, texts::tasksHeld);
  say(obligations.staleSummaries, texts::summariesStale);
  say(obligations.idleHeld, texts::heldWithNothingWritten);
  if (phrases.empty()) return std::string(texts::nothingOutstanding);
  return text::join(phrases, ", ");
}

void addObligations(json::Object& out, const TeamworkObligations& obligations,
                    const std::optional<TeamworkAudience>& audience) {
  out.add("clear", obligations.clear);
  if (obligations.clear) return;
  const auto addHeld = [&](json::Object& object, const TeamworkObligations::HeldRef& held) {
    addHeldTask(object, held, audience);
  };
  const auto addWrite = [&](json::Object& object,
                            const TeamworkObligations::UndeliveredRef& write) {
    addUndelivered(object, write, audience);
  };
  addUnlessEmpty(out, "oweReply", obligations.oweReply, addDebate);
  addUnlessEmpty(out, "awaitingReply", obligations.awaitingReply, addDebate);
  addTaskIDs(out, "yourBlockersOpen", obligations.yourBlockersOpen);
  addTaskIDs(out, "mentionsToAnswer", obligations.mentionsToAnswer);
  addTaskIDs(out, "tasksHeld", obligations.tasksHeld);
  addUnlessEmpty(out, "staleSummaries", obligations.staleSummaries, addHeld);
  addUnlessEmpty(out, "idleHeld", obligations.idleHeld, addHeld);
  addUnlessEmpty(out, "undelivered", obligations.undelivered, addWrite);
}

bool areClear(const std::optional<TeamworkObligations>& obligations) {
  return !obligations || obligations->clear;
}

std::string obligationsSuffix(const std::optional<TeamworkObligations>& obligations) {
  return areClear(obligations) ? std::string()
                               : texts::obligationsSuffix(summaryLine(*obligations));
}

}  // namespace quillpost
