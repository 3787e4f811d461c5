#include "render/briefing.h"

#include "harness/golden.h"
#include "json/value.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::sameText;

std::string briefing(const std::vector<TeamworkTask>& tasks, const BriefingView& view) {
  std::string out;
  {
    json::Object object(out);
    addBriefing(object, tasks, view);
  }
  return out;
}

TeamworkTask taskWith(const std::string& id, const std::function<void(TeamworkTask&)>& change) {
  TeamworkTask task;
  task.id = id;
  task.title = "T";
  task.state = "open";
  change(task);
  return task;
}

TeamworkTask openTask(const std::string& id) {
  return taskWith(id, [](TeamworkTask&) {});
}

TeamworkTask claimedTask(const std::string& id, const std::string& owner,
                         std::vector<std::string> resources) {
  return taskWith(id, [&](TeamworkTask& task) {
    task.state = "claimed";
    task.ownerFingerprint = owner;
    task.resources = std::move(resources);
  });
}

constexpr std::array<std::string_view, 4> liveBuckets = {"yours", "forYou", "readyToClaim",
                                                         "waiting"};

/// The ids of one bucket, a blank behind each; empty when the bucket is missing.
std::string idsIn(const json::TreeObject& briefing, std::string_view bucket) {
  std::string ids;
  const json::Tree* list = json::find(briefing, bucket);
  if (list == nullptr) return ids;
  for (const json::Tree& task : list->as_array()) {
    ids += std::string(json::findText(task.as_object(), "id").value_or("?")) + " ";
  }
  return ids;
}

/// Which bucket holds a briefing's only task.
std::string bucketOf(const TeamworkTask& task, const BriefingView& view) {
  const std::optional<json::Tree> tree = json::parse(briefing({task}, view));
  if (!tree) return "no JSON";
  std::string found;
  for (const std::string_view bucket :
       {"yours", "forYou", "readyToClaim", "waiting", "done", "rejected"}) {
    if (!idsIn(tree->as_object(), bucket).empty()) found += bucket;
  }
  return found;
}

constexpr std::string_view registerHint =
    "Call register first (then list_agents) so tasks you hold show under `yours`.";
constexpr std::string_view nothingHint =
    "Nothing is claimable by you right now — if work is still in flight, wait_for_changes to keep "
    "listening rather than exiting.";

TEST(Briefing, AnEmptyBacklogKeepsItsFourLists) {
  const std::string lists = R"({"yours":[],"forYou":[],"readyToClaim":[],"waiting":[],"hint":")";
  EXPECT_TRUE(
      sameText(lists + std::string(nothingHint) + "\"}", briefing({}, {.fingerprint = "#a3f9"})));
  EXPECT_TRUE(sameText(lists + std::string(registerHint) + " " + std::string(nothingHint) + "\"}",
                       briefing({}, {})));
}

TEST(Briefing, ATaskGoesWhereItFirstFits) {
  struct Row {
    std::string name;
    std::function<void(TeamworkTask&)> change;
    std::string bucket;
  };
  const std::vector<Row> rows = {
      {"unowned", [](auto&) {}, "readyToClaim"},
      {"an empty owner", [](auto& task) { task.ownerFingerprint = ""; }, "readyToClaim"},
      {"done", [](auto& task) { task.state = "done"; }, "done"},
      {"done and mine", [](auto& task) { task.state = "done", task.ownerFingerprint = "#a3f9"; },
       "done"},
      {"rejected", [](auto& task) { task.state = "rejected"; }, "rejected"},
      {"rejected and for me",
       [](auto& task) { task.state = "rejected", task.routedToFingerprint = "KQ3"; }, "rejected"},
      {"an unknown state", [](auto& task) { task.state = "Done"; }, "readyToClaim"},
      {"mine", [](auto& task) { task.ownerFingerprint = "#a3f9"; }, "yours"},
      {"mine and blocked", [](auto& task) { task.ownerFingerprint = "#a3f9", task.blocked = true; },
       "yours"},
      {"mine and for me",
       [](auto& task) { task.ownerFingerprint = "#a3f9", task.routedToFingerprint = "KQ3"; },
       "yours"},
      {"mine in another case", [](auto& task) { task.ownerFingerprint = "#A3F9"; }, "waiting"},
      {"a peer's", [](auto& task) { task.ownerFingerprint = "#b1"; }, "waiting"},
      {"a peer's, for me",
       [](auto& task) { task.ownerFingerprint = "#b1", task.routedToFingerprint = "KQ3"; },
       "waiting"},
      {"for me", [](auto& task) { task.routedToFingerprint = "KQ3"; }, "forYou"},
      {"for me in another case", [](auto& task) { task.routedToFingerprint = "kq3"; }, "forYou"},
      {"for me, live",
       [](auto& task) { task.routedToFingerprint = "KQ3", task.routedToLive = true; }, "forYou"},
      {"for me, not ready",
       [](auto& task) { task.routedToFingerprint = "KQ3", task.ready = false; }, "forYou"},
      {"for me, an empty owner",
       [](auto& task) { task.routedToFingerprint = "KQ3", task.ownerFingerprint = ""; }, "forYou"},
      {"for me, blocked", [](auto& task) { task.routedToFingerprint = "KQ3", task.blocked = true; },
       "waiting"},
      {"for my fingerprint", [](auto& task) { task.routedToFingerprint = "#a3f9"; },
       "readyToClaim"},
      {"for a peer who is here",
       [](auto& task) { task.routedToFingerprint = "ZZ1", task.routedToLive = true; }, "waiting"},
      {"for a peer who has gone", [](auto& task) { task.routedToFingerprint = "ZZ1"; },
       "readyToClaim"},
      {"live without a name", [](auto& task) { task.routedToLive = true; }, "waiting"},
      {"not ready", [](auto& task) { task.ready = false; }, "waiting"},
      {"blocked", [](auto& task) { task.blocked = true; }, "waiting"},
      {"claimed by nobody", [](auto& task) { task.state = "claimed"; }, "readyToClaim"},
  };
  const BriefingView view = {.includeAll = true, .fingerprint = "#a3f9", .handle = "KQ3"};
  for (const Row& row : rows) {
    EXPECT_EQ(bucketOf(taskWith("t1", row.change), view), row.bucket) << row.name;
  }
}

TEST(Briefing, WithoutAFingerprintNothingIsYours) {
  const TeamworkTask held = claimedTask("t1", "#a3f9", {});
  EXPECT_EQ(bucketOf(held, {.handle = "KQ3"}), "waiting");
  EXPECT_EQ(bucketOf(held, {.fingerprint = "", .handle = "KQ3"}), "waiting");
  EXPECT_EQ(bucketOf(held, {.fingerprint = "#a3f9"}), "yours");
}

TEST(Briefing, WithoutAHandleNothingIsForYou) {
  const TeamworkTask routed = taskWith("t1", [](auto& task) { task.routedToFingerprint = "KQ3"; });
  const TeamworkTask nowhere = taskWith("t1", [](auto& task) { task.routedToFingerprint = ""; });
  EXPECT_EQ(bucketOf(routed, {.fingerprint = "#a3f9"}), "readyToClaim");
  EXPECT_EQ(bucketOf(routed, {.handle = ""}), "readyToClaim");
  EXPECT_EQ(bucketOf(nowhere, {.handle = ""}), "readyToClaim");
  EXPECT_EQ(bucketOf(routed, {.handle = "KQ3"}), "forYou");
}

TEST(Briefing, HandlesAreComparedUnderUnicodeCaseFolding) {
  const TeamworkTask routed =
      taskWith("t1", [](auto& task) { task.routedToFingerprint = "STRASSE"; });
  EXPECT_EQ(bucketOf(routed, {.handle = "straße"}), "forYou");
}

TEST(Briefing, UrgentTasksComeFirstAndOthersKeepTheBoardsOrder) {
  const auto urgent = [](const std::string& id, int64_t priority) {
    return taskWith(id, [priority](TeamworkTask& task) { task.priority = priority; });
  };
  const std::vector<TeamworkTask> tasks = {
      urgent("a", 0),  urgent("b", 2), urgent("c", std::numeric_limits<int64_t>::min()),
      urgent("d", 2),  urgent("e", 0), urgent("f", std::numeric_limits<int64_t>::max()),
      urgent("g", -1),
  };
  const std::optional<json::Tree> tree = json::parse(briefing(tasks, {}));
  ASSERT_TRUE(tree);
  EXPECT_EQ(idsIn(tree->as_object(), "readyToClaim"), "f b d a e g c ");
}

TEST(Briefing, AWholeBoardIsToldInOrder) {
  const std::vector<TeamworkTask> tasks = {
      taskWith("t1", [](auto& task) { task.state = "done"; }),
      openTask("t2"),
      taskWith("t3", [](auto& task) { task.routedToFingerprint = "kq3"; }),
      claimedTask("t4", "#a3f9", {"db", "api"}),
      claimedTask("t5", "#b1", {"ui", "db"}),
      taskWith("t6", [](auto& task) { task.state = "rejected", task.priority = 1; }),
      taskWith("t7", [](auto& task) { task.priority = 5; }),
  };
  const std::string lists =
      R"({"yours":[{"id":"t4","title":"T","state":"claimed","owner":"#a3f9",)"
      R"("resources":["db","api"],"resourceConflict":["db"]}],)"
      R"("forYou":[{"id":"t3","title":"T","state":"open","assignedTo":"kq3"}],)"
      R"("readyToClaim":[{"id":"t7","title":"T","state":"open","priority":5},)"
      R"({"id":"t2","title":"T","state":"open"}],)"
      R"("waiting":[{"id":"t5","title":"T","state":"claimed","owner":"#b1",)"
      R"("resources":["ui","db"],"resourceConflict":["db"]}],)"
      R"("forYouNote":"A peer handed these to you by name. They are not claimed yet — claiming is )"
      R"(still yours to do, and you may decline by leaving them or saying why on the task. Take )"
      R"(these before anything in readyToClaim.","doneCount":1,"rejectedCount":1)";
  BriefingView view = {.fingerprint = "#a3f9", .handle = "KQ3"};
  EXPECT_TRUE(sameText(
      lists + R"(,"hint":"2 finished/declined tasks hidden — pass include:\"all\" to list them."})",
      briefing(tasks, view)));
  view.includeAll = true;
  EXPECT_TRUE(sameText(lists + R"(,"done":[{"id":"t1","title":"T","state":"done"}],)"
                               R"("rejected":[{"id":"t6","title":"T","state":"rejected",)"
                               R"("priority":1}]})",
                       briefing(tasks, view)));
}

TEST(Briefing, FinishedTasksAreListedOnlyWhereThereAreSome) {
  const TeamworkTask done = taskWith("t1", [](auto& task) { task.state = "done"; });
  const TeamworkTask rejected = taskWith("t2", [](auto& task) { task.state = "rejected"; });
  const std::string lists = R"({"yours":[],"forYou":[],"readyToClaim":[],"waiting":[],)";
  const std::string hint = R"(,"hint":")" + std::string(nothingHint) + "\"}";
  const BriefingView all = {.includeAll = true, .fingerprint = "#a3f9"};
  EXPECT_TRUE(
      sameText(lists + R"("doneCount":1,"done":[{"id":"t1","title":"T","state":"done"}])" + hint,
               briefing({done}, all)));
  EXPECT_TRUE(sameText(
      lists + R"("rejectedCount":1,"rejected":[{"id":"t2","title":"T","state":"rejected"}])" + hint,
      briefing({rejected}, all)));
}

/// What the hint of a briefing says; empty when it has none.
std::string hintOf(const std::vector<TeamworkTask>& tasks, const BriefingView& view) {
  const std::optional<json::Tree> tree = json::parse(briefing(tasks, view));
  if (!tree) return "no JSON";
  const json::TreeObject& object = tree->as_object();
  EXPECT_EQ(object.contains("hint"), json::findText(object, "hint").value_or("") != "");
  return std::string(json::findText(object, "hint").value_or(""));
}

TEST(Briefing, HintsStandInTheirOrder) {
  const TeamworkTask done = taskWith("d", [](auto& task) { task.state = "done"; });
  const TeamworkTask rejected = taskWith("r", [](auto& task) { task.state = "rejected"; });
  const TeamworkTask open = openTask("o");
  const TeamworkTask mine = claimedTask("m", "#a3f9", {});
  const TeamworkTask forMe = taskWith("f", [](auto& task) { task.routedToFingerprint = "KQ3"; });
  const std::string unregistered(registerHint);
  const std::string nothing(nothingHint);
  const std::string one = R"(1 finished/declined task hidden — pass include:"all" to list them.)";
  const std::string three =
      R"(3 finished/declined tasks hidden — pass include:"all" to list them.)";
  const BriefingView me = {.fingerprint = "#a3f9", .handle = "KQ3"};
  const BriefingView meAll = {.includeAll = true, .fingerprint = "#a3f9", .handle = "KQ3"};
  struct Row {
    std::string name;
    std::vector<TeamworkTask> tasks;
    BriefingView view;
    std::string hint;
  };
  const std::vector<Row> rows = {
      {"something to claim", {open}, me, ""},
      {"something held", {mine}, me, ""},
      {"only something handed over", {forMe}, me, nothing},
      {"one done", {open, done}, me, one},
      {"one rejected", {open, rejected}, me, one},
      {"three finished", {done, rejected, open, done}, me, three},
      {"finished and listed", {done, open}, meAll, ""},
      {"finished and nothing else", {done}, me, one + " " + nothing},
      {"finished, listed and nothing else", {done}, meAll, nothing},
      {"unregistered", {open}, {}, unregistered},
      {"an empty fingerprint counts as one", {open}, {.fingerprint = ""}, ""},
      {"unregistered and held by me", {mine}, {.handle = "KQ3"}, unregistered + " " + nothing},
      {"all hints", {done, done, rejected}, {}, unregistered + " " + three + " " + nothing},
  };
  for (const Row& row : rows) {
    EXPECT_TRUE(sameText(row.hint, hintOf(row.tasks, row.view))) << row.name;
  }
}

/// The conflicts of each task by its id, the resources with a blank behind each.
std::map<std::string, std::string> conflictsIn(const std::vector<TeamworkTask>& tasks) {
  std::map<std::string, std::string> conflicts;
  const std::optional<json::Tree> tree =
      json::parse(briefing(tasks, {.includeAll = true, .fingerprint = "#a3f9"}));
  if (!tree) return {{"no JSON", ""}};
  for (const auto& [key, value] : tree->as_object()) {
    if (!value.is_array()) continue;
    for (const json::Tree& task : value.get_array()) {
      const json::Tree* shared = json::find(task.as_object(), "resourceConflict");
      if (shared == nullptr) continue;
      std::string& names = conflicts[std::string(*json::findText(task.as_object(), "id"))];
      for (const json::Tree& name : shared->as_array()) {
        names += std::string(name.as_string()) + " ";
      }
    }
  }
  return conflicts;
}

TEST(Briefing, ClaimedTasksThatShareAResourceAreInConflict) {
  using Conflicts = std::map<std::string, std::string>;
  const TeamworkTask openOnDb = taskWith("o", [](auto& task) { task.resources = {"db"}; });
  const TeamworkTask doneOnDb =
      taskWith("d", [](auto& task) { task.resources = {"db"}, task.state = "done"; });
  struct Row {
    std::string name;
    std::vector<TeamworkTask> tasks;
    Conflicts conflicts;
  };
  const std::vector<Row> rows = {
      {"two on one",
       {claimedTask("a", "#a3f9", {"db"}), claimedTask("b", "#b1", {"db"})},
       {{"a", "db "}, {"b", "db "}}},
      {"an open and a finished task do not count",
       {claimedTask("a", "#a3f9", {"db"}), openOnDb, doneOnDb},
       {}},
      {"nor do they get a conflict",
       {openOnDb, claimedTask("a", "#a3f9", {"db"}), claimedTask("b", "#b1", {"db"}), doneOnDb},
       {{"a", "db "}, {"b", "db "}}},
      {"in the order of each task's own list",
       {claimedTask("a", "#a3f9", {"x", "db", "api"}), claimedTask("b", "#b1", {"api", "db", "y"})},
       {{"a", "db api "}, {"b", "api db "}}},
      {"a chain",
       {claimedTask("a", "#a3f9", {"1"}), claimedTask("b", "#b1", {"1", "2"}),
        claimedTask("c", "#b1", {"2"}), claimedTask("d", "#b1", {"3"})},
       {{"a", "1 "}, {"b", "1 2 "}, {"c", "2 "}}},
      {"case matters", {claimedTask("a", "#a3f9", {"db"}), claimedTask("b", "#b1", {"DB"})}, {}},
      {"one task that names a resource twice", {claimedTask("a", "#a3f9", {"db", "db"})}, {}},
      {"without resources", {claimedTask("a", "#a3f9", {}), claimedTask("b", "#b1", {})}, {}},
  };
  for (const Row& row : rows) EXPECT_EQ(conflictsIn(row.tasks), row.conflicts) << row.name;
}

TEST(Briefing, AnyBacklogIsJsonWithEveryTaskInExactlyOnePlace) {
  std::mt19937 random(424242);
  const auto oneOf = [&random](const std::vector<std::string>& words) {
    return words[random() % words.size()];
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<TeamworkTask> tasks;
    for (std::size_t count = random() % 25; count > 0; --count) {
      TeamworkTask task = openTask("t" + std::to_string(tasks.size()));
      task.title = oneOf({"", "Größe", "a \"b\"\n\t\\"});
      task.state = oneOf({"open", "claimed", "done", "rejected", "odd"});
      if (random() % 2 == 0) task.ownerFingerprint = oneOf({"", "#a3f9", "#b1"});
      if (random() % 2 == 0) task.routedToFingerprint = oneOf({"", "kq3", "ZZ1"});
      task.routedToLive = random() % 2 == 0;
      task.ready = random() % 3 != 0;
      task.blocked = random() % 3 == 0;
      task.priority = static_cast<int64_t>(random() % 5) - 2;
      if (random() % 2 == 0) task.resources = {oneOf({"db", "api"}), oneOf({"ui", "db"})};
      tasks.push_back(std::move(task));
    }
    BriefingView view = {.includeAll = random() % 2 == 0};
    if (random() % 2 == 0) view.fingerprint = "#a3f9";
    if (random() % 2 == 0) view.handle = "KQ3";

    const std::string text = briefing(tasks, view);
    const std::optional<json::Tree> tree = json::parse(text);
    ASSERT_TRUE(tree && tree->is_object()) << text;
    const json::TreeObject& object = tree->get_object();
    std::map<std::string, int> places;
    std::map<std::string, std::size_t> listed;
    for (const auto& [key, value] : object) {
      if (!value.is_array()) continue;
      int64_t above = std::numeric_limits<int64_t>::max();
      for (const json::Tree& task : value.get_array()) {
        ++places[std::string(*json::findText(task.as_object(), "id"))];
        const json::Tree* priority = json::find(task.as_object(), "priority");
        const int64_t own = priority == nullptr ? 0 : priority->to_number<int64_t>();
        EXPECT_GE(above, own) << text;
        above = own;
      }
      listed[std::string(key)] = value.get_array().size();
    }
    std::size_t finished = 0;
    for (const std::string key : {"done", "rejected"}) {
      const json::Tree* count = json::find(object, key + "Count");
      const std::size_t counted = count == nullptr ? 0 : count->to_number<std::size_t>();
      finished += counted;
      EXPECT_EQ(listed[key], view.includeAll ? counted : 0) << text;
    }
    for (const auto& [id, count] : places) EXPECT_EQ(count, 1) << id << " in " << text;
    EXPECT_EQ(places.size() + (view.includeAll ? 0 : finished), tasks.size()) << text;
    for (const std::string_view bucket : liveBuckets) {
      EXPECT_TRUE(object.contains(bucket)) << bucket << " in " << text;
    }
  }
}

}  // namespace
}  // namespace quillpost
