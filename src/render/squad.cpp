#include "render/squad.h"

#include "base/text.h"
#include "base/unicode.h"

#include <algorithm>
#include <vector>

namespace quillpost {
namespace {

constexpr std::string_view onMode = "on";
constexpr std::string_view errorState = "error";
constexpr std::string_view exitedState = "exited";
constexpr std::string_view terminalKind = "terminal";

void addLead(json::Object& out, const std::optional<TeamworkLead>& lead) {
  if (!lead) {
    out.addNull("lead");
    return;
  }
  json::Object child = out.object("lead");
  child.add("name", lead->name);
  child.add("runsWithoutApprovals", lead->runsWithoutApprovals);
  child.add("paused", lead->paused);
}

void addHelper(json::Object& out, const TeamworkHelper& helper) {
  out.add("name", helper.name).add("explanation", helper.explanation);
  out.add("runsWithoutApprovals", helper.runsWithoutApprovals);
  out.add("quillpostTools", helper.quillpostTools);
}

/// How many helpers run and may run; nothing unless both are known.
std::optional<HelperCount> helperCount(const TeamworkSquadState& squad) {
  if (!squad.helperLimit || !squad.helpersRunning) return std::nullopt;
  return HelperCount{.running = *squad.helpersRunning, .limit = *squad.helperLimit};
}

int64_t helpersLeft(const HelperCount& count) {
  return text::saturatingSubtract(count.limit, count.running);
}

std::string helperLine(const TeamworkHelper& helper) {
  std::string line = text::cat("\"", helper.name, "\"");
  if (!helper.explanation.empty()) text::append(line, text::cat(": ", helper.explanation));
  std::vector<std::string> tags;
  if (helper.runsWithoutApprovals) tags.emplace_back(texts::runsWithoutApproval);
  if (!helper.quillpostTools) tags.emplace_back(texts::onlyCommandLine);
  if (!tags.empty()) text::append(line, text::cat(" [", text::join(tags, "; "), "]"));
  return line;
}

std::string_view shownState(std::string_view state) {
  const texts::HelperRunState* const row =
      std::ranges::find(texts::helperRunStates, state, &texts::HelperRunState::state);
  return row == std::end(texts::helperRunStates) ? state : row->shownAs;
}

std::string ownership(const TeamworkHelperRun& run,
                      const std::optional<std::string>& callerHandle) {
  if (run.askedBy.empty()) return {};
  const bool known = callerHandle && !callerHandle->empty();
  const bool byCaller = known ? unicode::equalIgnoringCase(run.askedBy, *callerHandle) : run.yours;
  if (byCaller) return std::string(texts::askedForByYou);
  return run.yours ? texts::askedForByYourHelper(run.askedBy) : texts::askedForBy(run.askedBy);
}

bool canBeStopped(const TeamworkHelperRun& run) { return run.yours && run.state != exitedState; }

}  // namespace

void addSquad(json::Object& out, const TeamworkSquadState& squad) {
  out.add("mode", squad.mode);
  out.add("canAddress", squad.canAddress).add("canSpawn", squad.canSpawn);
  out.addOrNull("helperLimit", squad.helperLimit);
  out.addOrNull("helpersRunning", squad.helpersRunning);
  const std::optional<HelperCount> count = helperCount(squad);
  out.addOrNull("helpersLeft", count ? std::optional(helpersLeft(*count)) : std::nullopt);
  addLead(out, squad.lead);
  const std::vector<TeamworkHelper> none;
  out.list("helpers", squad.helpers ? *squad.helpers : none, addHelper);
}

std::string_view squadParagraph(std::string_view mode) {
  return mode == onMode ? texts::squadOn : texts::squadOff;
}

std::optional<std::string> helpersHereParagraph(const std::optional<TeamworkSquadState>& squad) {
  if (!squad || squad->mode != onMode) return std::nullopt;
  if (!squad->helpers || squad->helpers->empty()) return std::string(texts::noHelpersHere);
  const std::string lines = text::join(*squad->helpers, "; ", helperLine);
  const std::string_view naming =
      squad->helpers->size() == 1 ? texts::helperNameMayBeOmitted : texts::helperNameRequired;
  std::string paragraph = texts::helpersHere({.naming = naming, .lines = lines});
  if (const std::optional<HelperCount> count = helperCount(*squad))
    text::append(paragraph, text::cat(" ", helperLimitSentence(*count)));
  return paragraph;
}

std::string helperLimitSentence(const HelperCount& count) {
  const int64_t left = helpersLeft(count);
  return texts::helperLimit(
      count, left < 1 ? std::string(texts::noneMayStart) : texts::moreMayStart(left));
}

std::string helperRunLine(const TeamworkHelperRun& run,
                          const std::optional<std::string>& callerHandle) {
  std::string line = text::cat(run.handle, " (\"", run.helper, "\"");
  if (run.kind == terminalKind) line += texts::inTerminal;
  text::append(line, text::cat("): ", shownState(run.state)));
  const bool ended = run.state == errorState || run.state == exitedState;
  if (ended && run.detail && !run.detail->empty())
    text::append(line, text::cat(" — ", *run.detail));
  return line + ownership(run, callerHandle);
}

std::optional<std::string> helpersRunningParagraph(std::span<const TeamworkHelperRun> runs,
                                                   const std::optional<std::string>& callerHandle) {
  if (runs.empty()) return std::nullopt;
  const auto line = [&](const TeamworkHelperRun& run) { return helperRunLine(run, callerHandle); };
  std::string paragraph = texts::helpersRunningHere(text::join(runs, "; ", line));
  if (std::ranges::any_of(runs, canBeStopped)) paragraph += texts::stopOneOfYours;
  return paragraph;
}

}  // namespace quillpost
