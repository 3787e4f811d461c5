#include "render/briefing.h"

#include "base/text.h"
#include "base/unicode.h"
#include "render/task.h"
#include "render/texts/tasks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillpost {
namespace {

using Tasks = std::vector<const TeamworkTask*>;

/// Where a task belongs. Every task belongs to one of these and to no other.
enum class Bucket { yours, forYou, readyToClaim, waiting, done, rejected };

/// The tasks of each bucket, the most urgent first.
class Buckets {
 public:
  Tasks& operator[](Bucket bucket) { return tasks_[static_cast<std::size_t>(bucket)]; }
  const Tasks& operator[](Bucket bucket) const { return tasks_[static_cast<std::size_t>(bucket)]; }

 private:
  std::array<Tasks, static_cast<std::size_t>(Bucket::rejected) + 1> tasks_;
};

bool isRoutedTo(const TeamworkTask& task, const std::optional<std::string_view>& handle) {
  return handle && !handle->empty() && task.routedToFingerprint &&
         unicode::equalIgnoringCase(*task.routedToFingerprint, *handle);
}

Bucket bucketOf(const TeamworkTask& task, const BriefingView& view) {
  if (task.state == "done") return Bucket::done;
  if (task.state == "rejected") return Bucket::rejected;
  if (view.fingerprint && task.ownerFingerprint == *view.fingerprint) return Bucket::yours;
  const bool unowned = !task.ownerFingerprint || task.ownerFingerprint->empty();
  const bool takeable = unowned && !task.blocked;
  if (takeable && isRoutedTo(task, view.handle)) return Bucket::forYou;
  if (takeable && !task.routedToLive && task.ready) return Bucket::readyToClaim;
  return Bucket::waiting;
}

Buckets sortIntoBuckets(std::span<const TeamworkTask> tasks, const BriefingView& view) {
  Tasks sorted;
  sorted.reserve(tasks.size());
  for (const TeamworkTask& task : tasks) sorted.push_back(&task);
  std::ranges::stable_sort(sorted, std::ranges::greater(),
                           [](const TeamworkTask* task) { return task->priority; });
  Buckets buckets;
  for (const TeamworkTask* task : sorted) buckets[bucketOf(*task, view)].push_back(task);
  return buckets;
}

/// Which resources more than one claimed task holds.
class ResourceConflicts {
 public:
  explicit ResourceConflicts(std::span<const TeamworkTask> tasks) {
    for (const TeamworkTask& task : tasks) {
      if (!isClaimed(task)) continue;
      for (const std::string& resource : task.resources) {
        // A task that names a resource twice is no conflict with itself.
        Holders& holders = holders_.try_emplace(resource, Holders{&task}).first->second;
        if (holders.first != &task) holders.several = true;
      }
    }
  }

  /// Adds the resources that a claimed task shares with others, or nothing.
  void addTo(json::Object& out, const TeamworkTask& task) const {
    const auto isShared = [this](const std::string& resource) {
      return holders_.at(resource).several;
    };
    if (!isClaimed(task) || std::ranges::none_of(task.resources, isShared)) return;
    json::Array shared = out.array("resourceConflict");
    for (const std::string& resource : task.resources) {
      if (isShared(resource)) shared.add(resource);
    }
  }

 private:
  struct Holders {
    const TeamworkTask* first;
    bool several = false;
  };

  static bool isClaimed(const TeamworkTask& task) { return task.state == "claimed"; }

  std::unordered_map<std::string_view, Holders> holders_;
};

void addTaskList(json::Object& out, std::string_view key, const Tasks& tasks,
                 const ResourceConflicts& conflicts) {
  out.list(key, tasks, [&](json::Object& object, const TeamworkTask* task) {
    addTask(object, *task);
    conflicts.addTo(object, *task);
  });
}

std::string hintFor(const Buckets& buckets, const BriefingView& view) {
  std::vector<std::string> hints;
  if (!view.fingerprint) hints.emplace_back(texts::registerFirst);
  const int64_t finished =
      text::countOf(buckets[Bucket::done]) + text::countOf(buckets[Bucket::rejected]);
  if (!view.includeAll && finished != 0) hints.push_back(texts::finishedHidden(finished));
  // Tasks that were handed over do not count as claimable here.
  if (buckets[Bucket::yours].empty() && buckets[Bucket::readyToClaim].empty()) {
    hints.emplace_back(texts::nothingClaimable);
  }
  return text::join(hints, " ");
}

}  // namespace

void addBriefing(json::Object& out, std::span<const TeamworkTask> tasks, const BriefingView& view) {
  const Buckets buckets = sortIntoBuckets(tasks, view);
  const ResourceConflicts conflicts(tasks);
  const Tasks& done = buckets[Bucket::done];
  const Tasks& rejected = buckets[Bucket::rejected];

  addTaskList(out, "yours", buckets[Bucket::yours], conflicts);
  addTaskList(out, "forYou", buckets[Bucket::forYou], conflicts);
  addTaskList(out, "readyToClaim", buckets[Bucket::readyToClaim], conflicts);
  addTaskList(out, "waiting", buckets[Bucket::waiting], conflicts);
  if (!buckets[Bucket::forYou].empty()) out.add("forYouNote", texts::forYouNote);
  if (!done.empty()) out.add("doneCount", done.size());
  if (!rejected.empty()) out.add("rejectedCount", rejected.size());
  if (view.includeAll && !done.empty()) addTaskList(out, "done", done, conflicts);
  if (view.includeAll && !rejected.empty()) addTaskList(out, "rejected", rejected, conflicts);
  out.addText("hint", std::string_view(hintFor(buckets, view)));
}

}  // namespace quillpost
