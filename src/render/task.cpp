#include "render/task.h"

#include "base/unicode.h"
#include "model/markers.h"
#include "render/texts/tasks.h"

namespace quillpost {
namespace {

bool isMarkerLine(std::string_view line) {
  return line.starts_with(gistMarker) || line.starts_with(forMarker);
}

void addBlocker(json::Object& out, const TeamworkTask& task) {
  out.addIf("blocked", task.blocked);
  out.addText("blockerQuestion", task.blockerQuestion);
  out.addText("blockerAnswer", task.blockerAnswer);
  out.addIf("blockerEscalated", task.blockerEscalated);
}

void addKind(json::Object& out, const TeamworkTask& task) {
  if (task.priority != 0) out.add("priority", task.priority);
  out.addText("type", task.type);
  out.addIf("thrashing", task.thrashing);
  if (task.thrashing) out.add("claimAttempts", task.claimAttempts);
  if (!task.resources.empty()) out.add("resources", task.resources);
}

void addReview(json::Object& out, const TeamworkTask& task) {
  if (!task.reviewState) return;
  out.add("reviewState", *task.reviewState);
  out.addText("reviewRequestedFrom", task.reviewRequestedFromFingerprint);
  out.addText("reviewNote", task.reviewNote);
}

void addDependencies(json::Object& out, const TeamworkTask& task) {
  if (task.waitsOn.empty()) return;
  out.add("waitsOn", task.waitsOn).add("ready", task.ready);
  if (!task.unresolvedWaitsOn || task.unresolvedWaitsOn->empty()) return;
  out.add("unresolvedWaitsOn", *task.unresolvedWaitsOn);
  out.add("unresolvedWaitsOnNote", texts::unresolvedWaitsOnNote);
}

void addLog(json::Object& out, std::span<const std::string> log) {
  const Progress progress = progressOf(log);
  out.addText("lastProgress", progress.last);
  if (!progress.last.empty() && progress.count >= 2) out.add("logCount", progress.count);
  out.add("summary", summaryOf(log));
}

}  // namespace

void addTask(json::Object& out, const TeamworkTask& task) {
  out.add("id", task.id).add("title", task.title).add("state", task.state);
  out.addText("owner", task.ownerFingerprint);
  out.addText("assignedTo", task.routedToFingerprint);
  out.addText("askedBy", task.reportsToHandle);
  addBlocker(out, task);
  addKind(out, task);
  addReview(out, task);
  out.addText("parkedReason", task.parkedReason);
  out.addText("releaseRequestedReason", task.pendingReleaseReason);
  out.add("claimLeaseSecondsRemaining", task.claimLeaseSecondsRemaining);
  out.addIf("mentionsYou", task.mentionsYou);
  addDependencies(out, task);
  addLog(out, task.log);
}

void addMessage(json::Object& out, const TeamworkSquadMessage& message) {
  out.add("from", message.from).add("text", message.text);
  out.addText("fromName", std::string_view(message.fromName));
  out.add("ageSeconds", message.ageSeconds);
}

Progress progressOf(std::span<const std::string> log) {
  Progress progress;
  for (const std::string& line : log) {
    if (isMarkerLine(line)) continue;
    progress.last = line;
    ++progress.count;
  }
  return progress;
}

std::optional<std::string_view> summaryOf(std::span<const std::string> log) {
  for (; !log.empty(); log = log.first(log.size() - 1)) {
    const std::string_view line = log.back();
    if (!line.starts_with(gistMarker)) continue;
    const std::string_view gist = unicode::trimBlanks(line.substr(gistMarker.size()));
    return gist.empty() ? std::nullopt : std::optional(gist);
  }
  return std::nullopt;
}

}  // namespace quillpost
