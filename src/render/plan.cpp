#include "render/plan.h"

#include "base/unicode.h"
#include "render/discussion.h"
#include "render/obligations.h"
#include "render/texts/plan.h"

namespace quillpost {
namespace {

void addGoal(json::Object& out, std::string_view goal, const Page& page) {
  if (goal.empty()) return;
  if (page.offset || page.limit) {
    out.add("goal", numberedBody(goal, page));
  } else {
    out.add("goal", goal);
  }
}

}  // namespace

void addPlan(json::Object& out, const TeamworkPlan& plan, const Page& goalPage) {
  out.add("thread", plan.threadName);
  out.add("goalLocked", plan.goalLocked).add("dispatched", plan.dispatched);
  out.add("shared", plan.shared);
  out.add("otherLocalAgents", plan.otherLocalAgents).add("otherDevices", plan.otherDevices);
  addGoal(out, plan.goal, goalPage);
  out.addIf("goalComplete", plan.goalComplete);
  out.addIf("pendingGoalComplete", plan.pendingGoalComplete);
  out.addText("charter", plan.charter);
  out.list("discussions", plan.discussions, addDiscussion);
}

std::string nextStep(const TeamworkPlan& plan,
                     const std::optional<TeamworkObligations>& obligations) {
  if (plan.goalComplete && !areClear(obligations))
    return texts::goalCompleteButOwing(summaryLine(*obligations));
  if (plan.goalComplete) return std::string(texts::goalComplete);
  if (plan.pendingGoalComplete) return std::string(texts::completionProposed);
  if (!unicode::trim(plan.goal).empty()) return std::string(texts::goalSet);
  if (!plan.shared) return std::string(texts::firstAgentUnsynced);
  if (plan.otherDevices >= 1 || plan.otherLocalAgents >= 1)
    return std::string(texts::firstAgentPeersLive);
  return std::string(texts::firstAgentAlone);
}

}  // namespace quillpost
