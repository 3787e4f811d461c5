#include "render/task.h"

#include "harness/golden.h"
#include "harness/integers.h"
#include "json/value.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::highest;
using testing::lowest;
using testing::sameText;

std::string taskObject(const TeamworkTask& task) {
  std::string out;
  {
    json::Object object(out);
    addTask(object, task);
  }
  return out;
}

TeamworkTask plainTask() {
  TeamworkTask task;
  task.id = "t1";
  task.title = "Import";
  task.body = "never shown here";
  task.state = "open";
  return task;
}

/// What a task with one thing changed shows behind its id, title and state.
struct TaskRow {
  std::string name;
  std::function<void(TeamworkTask&)> change;
  std::string shown;
};

void expectShown(const std::vector<TaskRow>& rows) {
  for (const TaskRow& row : rows) {
    TeamworkTask task = plainTask();
    row.change(task);
    const std::string expected = R"({"id":"t1","title":"Import","state":"open")" + row.shown + "}";
    EXPECT_TRUE(sameText(expected, taskObject(task))) << row.name;
  }
}

TEST(Task, IdTitleAndStateAreAlwaysShownEvenWhenEmpty) {
  EXPECT_EQ(taskObject(TeamworkTask()), R"({"id":"","title":"","state":""})");
  EXPECT_EQ(taskObject(plainTask()), R"({"id":"t1","title":"Import","state":"open"})");
}

TEST(Task, PartiesAreShownWhenTheyHaveAName) {
  expectShown({
      {"owner", [](auto& task) { task.ownerFingerprint = "#a3f9"; }, R"(,"owner":"#a3f9")"},
      {"empty owner", [](auto& task) { task.ownerFingerprint = ""; }, ""},
      {"routed", [](auto& task) { task.routedToFingerprint = "KQ3"; }, R"(,"assignedTo":"KQ3")"},
      {"empty route", [](auto& task) { task.routedToFingerprint = ""; }, ""},
      {"asked by", [](auto& task) { task.reportsToHandle = "ZZ1"; }, R"(,"askedBy":"ZZ1")"},
      {"empty asked by", [](auto& task) { task.reportsToHandle = ""; }, ""},
  });
}

TEST(Task, BlockersAreShownPieceByPiece) {
  expectShown({
      {"blocked", [](auto& task) { task.blocked = true; }, R"(,"blocked":true)"},
      {"question", [](auto& task) { task.blockerQuestion = "May I?"; },
       R"(,"blockerQuestion":"May I?")"},
      {"empty question", [](auto& task) { task.blockerQuestion = ""; }, ""},
      {"answer", [](auto& task) { task.blockerAnswer = "Yes"; }, R"(,"blockerAnswer":"Yes")"},
      {"empty answer", [](auto& task) { task.blockerAnswer = ""; }, ""},
      {"escalated", [](auto& task) { task.blockerEscalated = true; },
       R"(,"blockerEscalated":true)"},
  });
}

TEST(Task, WhatSortOfTaskItIsIsShownWhenItIsOutOfTheOrdinary) {
  expectShown({
      {"priority", [](auto& task) { task.priority = 2; }, R"(,"priority":2)"},
      {"negative priority", [](auto& task) { task.priority = -1; }, R"(,"priority":-1)"},
      {"lowest priority", [](auto& task) { task.priority = lowest; },
       R"(,"priority":-9223372036854775808)"},
      {"type", [](auto& task) { task.type = "bug"; }, R"(,"type":"bug")"},
      {"empty type", [](auto& task) { task.type = ""; }, ""},
      {"attempts without thrashing", [](auto& task) { task.claimAttempts = 5; }, ""},
      {"thrashing", [](auto& task) { task.thrashing = true, task.claimAttempts = 5; },
       R"(,"thrashing":true,"claimAttempts":5)"},
      {"thrashing without attempts", [](auto& task) { task.thrashing = true; },
       R"(,"thrashing":true,"claimAttempts":0)"},
      {"resources",
       [](auto& task) {
         task.resources = {"db", ""};
       },
       R"(,"resources":["db",""])"},
  });
}

TEST(Task, AReviewIsShownWhenThereIsAState) {
  expectShown({
      {"state", [](auto& task) { task.reviewState = "requested"; },
       R"(,"reviewState":"requested")"},
      {"empty state", [](auto& task) { task.reviewState = ""; }, R"(,"reviewState":"")"},
      {"all of it",
       [](auto& task) {
         task.reviewState = "approved";
         task.reviewRequestedFromFingerprint = "#b1";
         task.reviewNote = "fine";
         task.reviewByFingerprint = "#b2";
       },
       R"(,"reviewState":"approved","reviewRequestedFrom":"#b1","reviewNote":"fine")"},
      {"empty details",
       [](auto& task) {
         task.reviewState = "approved";
         task.reviewRequestedFromFingerprint = "";
         task.reviewNote = "";
       },
       R"(,"reviewState":"approved")"},
      {"details without a state",
       [](auto& task) {
         task.reviewRequestedFromFingerprint = "#b1";
         task.reviewNote = "fine";
       },
       ""},
  });
}

TEST(Task, ReasonsLeaseAndMentionAreShownWhenThere) {
  expectShown({
      {"parked", [](auto& task) { task.parkedReason = "lunch"; }, R"(,"parkedReason":"lunch")"},
      {"empty parked", [](auto& task) { task.parkedReason = ""; }, ""},
      {"release", [](auto& task) { task.pendingReleaseReason = "urgent"; },
       R"(,"releaseRequestedReason":"urgent")"},
      {"empty release", [](auto& task) { task.pendingReleaseReason = ""; }, ""},
      {"lease", [](auto& task) { task.claimLeaseSecondsRemaining = 90; },
       R"(,"claimLeaseSecondsRemaining":90)"},
      {"no lease left", [](auto& task) { task.claimLeaseSecondsRemaining = 0; },
       R"(,"claimLeaseSecondsRemaining":0)"},
      {"longest lease", [](auto& task) { task.claimLeaseSecondsRemaining = highest; },
       R"(,"claimLeaseSecondsRemaining":9223372036854775807)"},
      {"mention", [](auto& task) { task.mentionsYou = true; }, R"(,"mentionsYou":true)"},
  });
}

TEST(Task, DependenciesAreShownWithTheirReadiness) {
  expectShown({
      {"waiting",
       [](auto& task) {
         task.waitsOn = {"t2", "t3"};
         task.ready = false;
       },
       R"(,"waitsOn":["t2","t3"],"ready":false)"},
      {"ready", [](auto& task) { task.waitsOn = {"t2"}; }, R"(,"waitsOn":["t2"],"ready":true)"},
      {"not ready without a reason", [](auto& task) { task.ready = false; }, ""},
      {"nothing unresolved",
       [](auto& task) {
         task.waitsOn = {"t2"};
         task.unresolvedWaitsOn = std::vector<std::string>();
       },
       R"(,"waitsOn":["t2"],"ready":true)"},
      {"unresolved",
       [](auto& task) {
         task.waitsOn = {"t2", "t9"};
         task.unresolvedWaitsOn = {"t9"};
       },
       R"(,"waitsOn":["t2","t9"],"ready":true,"unresolvedWaitsOn":["t9"],"unresolvedWaitsOnNote":)"
       R"("These ids name no task on this board — deleted, mistyped, or a peer's id that has )"
       R"(not crossed yet. They are NOT blocking this task, so `ready` above does not account )"
       R"(for them: check them before treating this as gated.")"},
      {"unresolved without dependencies", [](auto& task) { task.unresolvedWaitsOn = {"t9"}; }, ""},
  });
}

TEST(Task, TheLogIsShownByItsLastProgressItsLengthAndItsSummary) {
  expectShown({
      {"one line", [](auto& task) { task.log = {"began"}; }, R"(,"lastProgress":"began")"},
      {"two lines",
       [](auto& task) {
         task.log = {"began", "halfway"};
       },
       R"(,"lastProgress":"halfway","logCount":2)"},
      {"only an empty line", [](auto& task) { task.log = {""}; }, ""},
      {"the last line empty",
       [](auto& task) {
         task.log = {"began", "halfway", ""};
       },
       ""},
      {"an empty line before",
       [](auto& task) {
         task.log = {"", "began"};
       },
       R"(,"lastProgress":"began","logCount":2)"},
      {"only a gist", [](auto& task) { task.log = {"[[gist]] All good"}; },
       R"(,"summary":"All good")"},
      {"a gist last",
       [](auto& task) {
         task.log = {"began", "halfway", "[[gist]] All good"};
       },
       R"(,"lastProgress":"halfway","logCount":2,"summary":"All good")"},
      {"a hand-off last",
       [](auto& task) {
         task.log = {"began", "[[for]] KQ3: yours"};
       },
       R"(,"lastProgress":"began")"},
      {"an empty line and a gist",
       [](auto& task) {
         task.log = {"", "[[gist]] All good"};
       },
       R"(,"summary":"All good")"},
  });
}

TEST(Task, AFullTaskShowsEverythingInOrder) {
  TeamworkTask task = plainTask();
  task.state = "claimed";
  task.ownerFingerprint = "#a3f9";
  task.claimLeaseSecondsRemaining = 600;
  task.log = {"began", "[[for]] KQ3: go on", "half \"done\"", "[[gist]]  Half way \t"};
  task.blocked = true;
  task.blockerQuestion = "May I?";
  task.blockerAnswer = "Yes";
  task.blockerEscalated = true;
  task.priority = 3;
  task.type = "feature";
  task.thrashing = true;
  task.claimAttempts = 4;
  task.resources = {"db", "src/a.cpp"};
  task.reviewState = "requested";
  task.reviewRequestedFromFingerprint = "#b1";
  task.reviewNote = "look at b";
  task.reviewByFingerprint = "#b2";
  task.parkedReason = "lunch";
  task.assignedRole = "tester";
  task.routedToFingerprint = "KQ3";
  task.routedToLive = true;
  task.reportsToHandle = "ZZ1";
  task.waitsOn = {"t2"};
  task.ready = false;
  task.pendingReleaseReason = "urgent";
  task.mentionsYou = true;
  task.openDiscussions = 1;
  task.escalatedDiscussions = 1;
  task.discussions.resize(1);
  task.pendingDelete = true;
  task.pendingDeleteReason = "stale";
  task.watchers.resize(1);
  EXPECT_TRUE(sameText(
      R"({"id":"t1","title":"Import","state":"claimed","owner":"#a3f9","assignedTo":"KQ3",)"
      R"("askedBy":"ZZ1","blocked":true,"blockerQuestion":"May I?","blockerAnswer":"Yes",)"
      R"("blockerEscalated":true,"priority":3,"type":"feature","thrashing":true,)"
      R"("claimAttempts":4,"resources":["db","src/a.cpp"],"reviewState":"requested",)"
      R"("reviewRequestedFrom":"#b1","reviewNote":"look at b","parkedReason":"lunch",)"
      R"("releaseRequestedReason":"urgent","claimLeaseSecondsRemaining":600,)"
      R"("mentionsYou":true,"waitsOn":["t2"],"ready":false,)"
      R"("lastProgress":"half \"done\"","logCount":2,"summary":"Half way"})",
      taskObject(task)));
}

TEST(Progress, LinesWithAMarkerAreNotCounted) {
  struct Row {
    std::string name;
    std::vector<std::string> log;
    std::string last;
    int64_t count;
  };
  const std::vector<Row> rows = {
      {"no log", {}, "", 0},
      {"only markers", {"[[gist]] a", "[[for]] b"}, "", 0},
      {"a gist without text", {"a", "[[gist]] "}, "a", 1},
      {"a hand-off without text", {"a", "[[for]] "}, "a", 1},
      {"a gist without its blank", {"a", "[[gist]]"}, "[[gist]]", 2},
      {"a hand-off without its blank", {"a", "[[for]]x"}, "[[for]]x", 2},
      {"a blank before the marker", {"a", " [[gist]] b"}, " [[gist]] b", 2},
      {"another case", {"a", "[[Gist]] b"}, "[[Gist]] b", 2},
      {"a marker further on", {"a [[for]] b"}, "a [[for]] b", 1},
      {"an empty line last", {"a", ""}, "", 2},
      {"markers between", {"a", "[[for]] x", "b", "[[gist]] y", "c", "[[gist]] z"}, "c", 3},
  };
  for (const Row& row : rows) {
    const Progress progress = progressOf(row.log);
    EXPECT_EQ(progress.last, row.last) << row.name;
    EXPECT_EQ(progress.count, row.count) << row.name;
  }
}

TEST(Summary, TheLatestGistCountsAndNoOther) {
  struct Row {
    std::string name;
    std::vector<std::string> log;
    std::optional<std::string_view> summary;
  };
  const std::vector<Row> rows = {
      {"no log", {}, std::nullopt},
      {"no gist", {"a", "[[for]] b"}, std::nullopt},
      {"one", {"[[gist]] a", "b"}, "a"},
      {"the later one", {"[[gist]] a", "[[gist]] b", "c"}, "b"},
      {"blanks at the ends", {"[[gist]] \t a b\t "}, "a b"},
      {"a no-break space at the end", {"[[gist]] a\u00A0"}, "a"},
      {"a line feed is no blank", {"[[gist]] \na\n"}, "\na\n"},
      {"an empty one after another", {"[[gist]] a", "[[gist]] "}, std::nullopt},
      {"a blank one after another", {"[[gist]] a", "[[gist]]  \t"}, std::nullopt},
      {"no marker without its blank", {"[[gist]] a", "[[gist]]b"}, "a"},
      {"a second marker stays", {"[[gist]] [[gist]] a"}, "[[gist]] a"},
  };
  for (const Row& row : rows) EXPECT_EQ(summaryOf(row.log), row.summary) << row.name;
}

TEST(Message, TheNameIsShownWhenThereIsOne) {
  const std::vector<TeamworkSquadMessage> messages = {
      {.id = "m1", .from = "KQ3", .fromName = "Ada", .text = "Say \"hi\"", .ageSeconds = 12},
      {.id = "m2", .from = "#a3f9", .fromName = "", .text = "", .ageSeconds = 0},
  };
  std::string out;
  json::appendList(out, messages, addMessage);
  EXPECT_TRUE(sameText(R"([{"from":"KQ3","text":"Say \"hi\"","fromName":"Ada","ageSeconds":12},)"
                       R"({"from":"#a3f9","text":"","ageSeconds":0}])",
                       out));
}

TEST(Task, AnyLogGivesJsonWhoseCountAndSummaryAgreeWithIt) {
  constexpr std::string_view lines[] = {"", "a", "\"\\\n", "[[gist]] ", "[[gist]] g", "[[for]] f"};
  std::mt19937 random(20240611);
  for (int round = 0; round < 500; ++round) {
    TeamworkTask task = plainTask();
    std::size_t progressLines = 0;
    std::string last;
    std::string gist;
    for (std::size_t length = random() % 8; length > 0; --length) {
      const std::string line(lines[random() % std::size(lines)]);
      task.log.push_back(line);
      if (line.starts_with("[[gist]] ")) {
        gist = line.substr(9);
      } else if (!line.starts_with("[[for]] ")) {
        last = line;
        ++progressLines;
      }
    }
    const std::string text = taskObject(task);
    const std::optional<json::Tree> tree = json::parse(text);
    ASSERT_TRUE(tree && tree->is_object()) << text;
    const json::TreeObject& object = tree->get_object();
    EXPECT_EQ(json::findText(object, "lastProgress").value_or(""), last) << text;
    EXPECT_EQ(json::findText(object, "summary").value_or(""), gist) << text;
    EXPECT_EQ(object.contains("lastProgress"), !last.empty()) << text;
    EXPECT_EQ(object.contains("summary"), !gist.empty()) << text;
    ASSERT_EQ(object.contains("logCount"), !last.empty() && progressLines >= 2) << text;
    if (const json::Tree* count = json::find(object, "logCount")) {
      EXPECT_EQ(count->to_number<std::size_t>(), progressLines) << text;
    }
  }
}

}  // namespace
}  // namespace quillpost
