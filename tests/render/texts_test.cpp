// Every fixed text against an independent copy, so that a changed comma is noticed.

#include "entry/stop_hook_text.h"
#include "harness/paths.h"
#include "harness/tool_block.h"
#include "mcp/instructions.h"
#include "render/texts/discussion.h"
#include "render/texts/obligations.h"
#include "render/texts/plan.h"
#include "render/texts/registration.h"
#include "render/texts/replies.h"
#include "render/texts/roster.h"
#include "render/texts/tasks.h"
#include "render/texts/waiting.h"
#include "tools/tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

namespace fs = std::filesystem;

/// A text under the name of what gives it; a text with a hole names its samples too.
struct NamedText {
  std::string name;
  std::string text;
};

using Texts = std::vector<NamedText>;

// The samples that several texts share.
constexpr std::string_view owed = "1 reply owed";
constexpr std::string_view macs = "Studio (@studio), Air (@air)";

void addDiscussionWords(Texts& out, const std::string& name, const texts::DiscussionWords& words) {
  out.push_back({name + ".openWait", std::string(words.openWait)});
  out.push_back({name + ".heldBack", std::string(words.heldBack)});
  out.push_back({name + ".replyWait", std::string(words.replyWait)});
  out.push_back({name + ".resolved", std::string(words.resolved)});
}

void addPaneWords(Texts& out, const std::string& name, const texts::PaneWords& words) {
  out.push_back({name + ".terminalsExist", std::string(words.terminalsExist)});
  out.push_back({name + ".inThem", std::string(words.inThem)});
  out.push_back({name + ".theyAre", std::string(words.theyAre)});
}

/// A constant under its own name.
#define CONSTANT(name) \
  { #name, std::string(texts::name) }

void addDiscussions(Texts& out) {
  addDiscussionWords(out, "boardDiscussion", texts::boardDiscussion);
  addDiscussionWords(out, "taskDiscussion", texts::taskDiscussion);
  const Texts more = {
      {"discussionOpened(d123456, boardDiscussion)",
       texts::discussionOpened("d123456", texts::boardDiscussion)},
      {"discussionOpened(d123456, taskDiscussion)",
       texts::discussionOpened("d123456", texts::taskDiscussion)},
      {"volleyPosted(boardDiscussion)", texts::volleyPosted(texts::boardDiscussion)},
      {"volleyPosted(taskDiscussion)", texts::volleyPosted(texts::taskDiscussion)},
      {"roundBudget(3)", texts::roundBudget(3)},
      {"roundBudget(9)", texts::roundBudget(9)},
  };
  out.insert(out.end(), more.begin(), more.end());
}

void addPlan(Texts& out) {
  const Texts plan = {
      CONSTANT(goalComplete),
      {"goalCompleteButOwing(1 reply owed)", texts::goalCompleteButOwing(owed)},
      CONSTANT(completionProposed),
      CONSTANT(goalSet),
      CONSTANT(firstAgentPeersLive),
      CONSTANT(firstAgentUnsynced),
      CONSTANT(firstAgentAlone),
  };
  out.insert(out.end(), plan.begin(), plan.end());
}

void addSummaryLine(Texts& out) {
  const Texts line = {
      {"repliesOwed(1)", texts::repliesOwed(1)},
      {"repliesOwed(2)", texts::repliesOwed(2)},
      {"discussionsAwaiting(1)", texts::discussionsAwaiting(1)},
      {"discussionsAwaiting(2)", texts::discussionsAwaiting(2)},
      {"blockersOpen(1)", texts::blockersOpen(1)},
      {"blockersOpen(2)", texts::blockersOpen(2)},
      {"mentionsToAnswer(1)", texts::mentionsToAnswer(1)},
      {"mentionsToAnswer(2)", texts::mentionsToAnswer(2)},
      {"tasksHeld(1)", texts::tasksHeld(1)},
      {"tasksHeld(2)", texts::tasksHeld(2)},
      {"summariesStale(1)", texts::summariesStale(1)},
      {"summariesStale(2)", texts::summariesStale(2)},
      {"heldWithNothingWritten(1)", texts::heldWithNothingWritten(1)},
      {"heldWithNothingWritten(2)", texts::heldWithNothingWritten(2)},
      {"writesRefused(1)", texts::writesRefused(1)},
      {"writesQueued(2)", texts::writesQueued(2)},
      {"writesNotLanded(3, 1 REFUSED by the relay, 2 queued unsent)",
       texts::writesNotLanded(3, "1 REFUSED by the relay, 2 queued unsent")},
      CONSTANT(nothingOutstanding),
      {"obligationsSuffix(1 reply owed)", texts::obligationsSuffix(owed)},
  };
  out.insert(out.end(), line.begin(), line.end());
}

void addObligations(Texts& out) {
  const Texts obligations = {
      CONSTANT(heldNothingWritten),
      CONSTANT(writeOrRelease),
      CONSTANT(writeOrReleaseForOthers),
      CONSTANT(writeOrReleaseAlone),
      {"summaryBehind(1)", texts::summaryBehind(1)},
      CONSTANT(refreshSummary),
      CONSTANT(writeRefused),
      CONSTANT(redoOrSayWhy),
      CONSTANT(writeQueued),
      CONSTANT(undeliveredAudienceUnknown),
      CONSTANT(undeliveredAlone),
      CONSTANT(undeliveredLocalAgents),
      {"undeliveredTo(the person you share this Thread with)",
       texts::undeliveredTo("the person you share this Thread with")},
      CONSTANT(yourOtherMac),
      CONSTANT(yourOtherMacs),
      CONSTANT(otherPerson),
      CONSTANT(otherPeople),
  };
  out.insert(out.end(), obligations.begin(), obligations.end());
}

void addSquad(Texts& out) {
  for (const texts::HelperRunState& run : texts::helperRunStates) {
    out.push_back({"helperRunStates." + std::string(run.state), std::string(run.shownAs)});
  }
  constexpr std::string_view helper = "\"scout\": reads code [runs without asking for approval]";
  const Texts squad = {
      {"quietNote(2)", texts::quietNote(2)},
      CONSTANT(seatNote),
      CONSTANT(squadOn),
      CONSTANT(squadOff),
      CONSTANT(noHelpersHere),
      CONSTANT(helperNameMayBeOmitted),
      CONSTANT(helperNameRequired),
      {"helpersHere(, or omit it; one line)",
       texts::helpersHere({.naming = ", or omit it", .lines = helper})},
      CONSTANT(runsWithoutApproval),
      CONSTANT(onlyCommandLine),
      CONSTANT(noneMayStart),
      {"moreMayStart(2)", texts::moreMayStart(2)},
      {"helperLimit(1 of 3, moreMayStart(2))",
       texts::helperLimit({.running = 1, .limit = 3}, texts::moreMayStart(2))},
      {"helperLimit(3 of 3, noneMayStart)",
       texts::helperLimit({.running = 3, .limit = 3}, texts::noneMayStart)},
      CONSTANT(inTerminal),
      {"askedForByYourHelper(KQ3)", texts::askedForByYourHelper("KQ3")},
      CONSTANT(askedForByYou),
      {"askedForBy(KQ3)", texts::askedForBy("KQ3")},
      {"helpersRunningHere(M2X (\"scout\"): working)",
       texts::helpersRunningHere("M2X (\"scout\"): working")},
      CONSTANT(stopOneOfYours),
  };
  out.insert(out.end(), squad.begin(), squad.end());
}

void addDevices(Texts& out) {
  const std::string macNames(macs);
  addPaneWords(out, "onePane", texts::onePane);
  addPaneWords(out, "severalPanes", texts::severalPanes);
  const Texts devices = {
      {"alsoOpenHere(KQ3; onePane)", texts::alsoOpenHere("KQ3", texts::onePane)},
      {"alsoOpenHere(KQ3, M2X; severalPanes)",
       texts::alsoOpenHere("KQ3, M2X", texts::severalPanes)},
      CONSTANT(otherDevices),
      {"devicesTakingWork(" + macNames + "; studio)",
       texts::devicesTakingWork({.names = macs, .firstTag = "studio"})},
      {"devicesPaused(" + macNames + ")", texts::devicesPaused(macs)},
      {"devicesNotTakingWork(" + macNames + ")", texts::devicesNotTakingWork(macs)},
      {"devicesUnreachable(" + macNames + ")", texts::devicesUnreachable(macs)},
      {"devicesAddressable(" + macNames + "; studio)",
       texts::devicesAddressable({.names = macs, .firstTag = "studio"})},
      CONSTANT(commandLineNote),
      CONSTANT(commandLineWaits),
  };
  out.insert(out.end(), devices.begin(), devices.end());
}

void addRegistration(Texts& out) {
  for (std::size_t row = 0; row < std::size(texts::rules); ++row) {
    out.push_back({"rules." + std::to_string(row + 1), std::string(texts::rules[row])});
  }
  const Texts registration = {
      CONSTANT(registeredNextStep),
      CONSTANT(boardProtocol),
      CONSTANT(access),
      CONSTANT(handleNote),
  };
  out.insert(out.end(), registration.begin(), registration.end());
}

void addWaiting(Texts& out) {
  for (std::size_t row = 0; row < std::size(texts::quietTurns); ++row) {
    out.push_back({"quietTurns." + std::to_string(row), std::string(texts::quietTurns[row])});
  }
  const Texts waiting = {
      CONSTANT(listening),
      CONSTANT(nothingToWaitOn),
      CONSTANT(entireBacklog),
      {"heldForSecondsNote(45, 30)", texts::heldForSecondsNote({.asked = 45, .granted = 30})},
      CONSTANT(goalConfirmed),
      CONSTANT(claimExpiring),
      CONSTANT(claimExpired),
      CONSTANT(watchedTasksMoved),
      CONSTANT(woken),
      CONSTANT(completionAwaited),
      CONSTANT(boardMoved),
      CONSTANT(quietCheaperWait),
      CONSTANT(quickReturn),
      {"quietButOwing(1 reply owed)", texts::quietButOwing(owed)},
      CONSTANT(youWereTagged),
      {"youOweReplies(d123456, d654321)", texts::youOweReplies("d123456, d654321")},
  };
  out.insert(out.end(), waiting.begin(), waiting.end());
}

void addReplies(Texts& out) {
  const Texts replies = {
      {"blockerQuestionTooLong(141)", texts::blockerQuestionTooLong(141)},
      CONSTANT(outsideThread),
      CONSTANT(appUnreachable),
      {"threadLine(T-abc123)", texts::threadLine("T-abc123")},
      CONSTANT(registered),
      CONSTANT(messagesNote),
      CONSTANT(taskNotFound),
      CONSTANT(noPlan),
      CONSTANT(discussionUpdated),
      CONSTANT(nothingToActOn),
      CONSTANT(done),
      {"nothingToShow(reject_task)", texts::nothingToShow("reject_task")},
      CONSTANT(teamworkError),
  };
  out.insert(out.end(), replies.begin(), replies.end());
}

void addTasks(Texts& out) {
  const Texts tasks = {
      CONSTANT(unresolvedWaitsOnNote),
      CONSTANT(forYouNote),
      CONSTANT(registerFirst),
      {"finishedHidden(1)", texts::finishedHidden(1)},
      {"finishedHidden(3)", texts::finishedHidden(3)},
      CONSTANT(nothingClaimable),
      {"earlierLinesOmitted(1)", texts::earlierLinesOmitted(1)},
      {"earlierLinesOmitted(10)", texts::earlierLinesOmitted(10)},
      CONSTANT(emptyBody),
      {"offsetPastEnd(5, 2)", texts::offsetPastEnd({.offset = 5, .lineCount = 2})},
      {"offsetPastEnd(2, 1)", texts::offsetPastEnd({.offset = 2, .lineCount = 1})},
      {"continueAt(6)", texts::continueAt(6)},
      {"pageFooter(1 to 5 of 12, continueAt(6))",
       texts::pageFooter({.first = 1, .last = 5, .lineCount = 12}, texts::continueAt(6))},
      {"pageFooter(6 to 12 of 12)",
       texts::pageFooter({.first = 6, .last = 12, .lineCount = 12}, "")},
  };
  out.insert(out.end(), tasks.begin(), tasks.end());
}

void addServerAndHook(Texts& out) {
  const Texts ends = {
      CONSTANT(serverInstructions),
      CONSTANT(stopHookLine),
  };
  out.insert(out.end(), ends.begin(), ends.end());
}

#undef CONSTANT

/// Every fixed text of the program.
Texts allTexts() {
  Texts all;
  addDiscussions(all);
  addPlan(all);
  addSummaryLine(all);
  addObligations(all);
  addSquad(all);
  addDevices(all);
  addRegistration(all);
  addWaiting(all);
  addReplies(all);
  addTasks(all);
  addServerAndHook(all);
  return all;
}

/// How many characters stand before the byte at `end`.
std::size_t charactersBefore(std::string_view text, std::size_t end) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
                    [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

std::size_t characters(std::string_view text) { return charactersBefore(text, text.size()); }

/// A line feed as the golden file writes it.
std::string unbroken(std::string_view text) {
  std::string line;
  for (const char byte : text) {
    line += byte == '\n' ? std::string("\\n") : std::string(1, byte);
  }
  return line;
}

/// One line of the golden file.
struct GoldenText {
  std::size_t characters;
  std::string text;
};

std::map<std::string, GoldenText> goldenTexts() {
  std::map<std::string, GoldenText> golden;
  std::ifstream file(testing::inTests("golden/texts.golden"), std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    const std::size_t afterName = line.find('\t');
    const std::size_t afterLength = line.find('\t', afterName + 1);
    if (afterLength == std::string::npos) {
      ADD_FAILURE() << "not a name, a length and a text: " << line;
      continue;
    }
    const std::string length = line.substr(afterName + 1, afterLength - afterName - 1);
    const bool isNew =
        golden
            .try_emplace(line.substr(0, afterName),
                         GoldenText{std::stoul(length), line.substr(afterLength + 1)})
            .second;
    EXPECT_TRUE(isNew) << "two lines named " << line.substr(0, afterName);
  }
  return golden;
}

/// Where two texts part, for a reader of the failure.
std::string partingOf(const std::string& actual, const std::string& expected) {
  const auto [inActual, inExpected] =
      std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
  const auto byte = static_cast<std::size_t>(inActual - actual.begin());
  std::ostringstream words;
  words << "they part at character " << charactersBefore(actual, byte) << ", after \""
        << actual.substr(byte < 30 ? 0 : byte - 30, std::min<std::size_t>(byte, 30)) << "\"";
  return words.str();
}

/// The names that a header of words declares, tables, records of words and functions included.
std::set<std::string> declaredNames(const fs::path& header) {
  std::ifstream file(header, std::ios::binary);
  const std::string source{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::regex declaration(R"(\ninline (?:constexpr [\w:]+|std::string) (\w+))");
  std::set<std::string> names;
  for (std::sregex_iterator at(source.begin(), source.end(), declaration), end; at != end; ++at) {
    names.insert((*at)[1].str());
  }
  return names;
}

TEST(Texts, EveryTextIsItsGoldenLine) {
  const std::map<std::string, GoldenText> golden = goldenTexts();
  for (const auto& [name, text] : allTexts()) {
    const auto line = golden.find(name);
    if (line == golden.end()) {
      ADD_FAILURE() << name << " has no golden line";
      continue;
    }
    const std::string actual = unbroken(text);
    EXPECT_EQ(actual, line->second.text) << name << ": " << partingOf(actual, line->second.text);
    EXPECT_EQ(characters(text), line->second.characters) << name;
  }
}

TEST(Texts, EveryGoldenLineIsAText) {
  std::set<std::string> names;
  for (const NamedText& text : allTexts()) {
    EXPECT_TRUE(names.insert(text.name).second) << text.name << " is listed twice";
  }
  for (const auto& [name, text] : goldenTexts()) {
    EXPECT_TRUE(names.contains(name)) << name << " is in the golden file only";
  }
}

TEST(Texts, EveryDeclaredTextIsCompared) {
  std::set<std::string> compared;
  for (const NamedText& text : allTexts()) {
    compared.insert(text.name.substr(0, text.name.find_first_of(".(")));
  }
  const fs::path source = testing::inSources("src");
  std::vector<fs::path> headers = {source / "mcp/instructions.h",
                                   source / "entry/stop_hook_text.h"};
  for (const fs::directory_entry& entry : fs::directory_iterator(source / "render/texts")) {
    headers.push_back(entry.path());
  }
  for (const fs::path& header : headers) {
    const std::set<std::string> declared = declaredNames(header);
    EXPECT_FALSE(declared.empty()) << header;
    for (const std::string& name : declared) {
      EXPECT_TRUE(compared.contains(name)) << name << " of " << header << " is compared nowhere";
    }
  }
}

TEST(Texts, EveryVerbThatIsNamedIsATool) {
  for (const auto& [name, text] : allTexts())
    for (const std::string_view verb : testing::verbsIn(text))
      EXPECT_NE(findTool(verb), nullptr) << name << " speaks of " << verb;
}

TEST(Texts, TheInstructionsHaveTheirLength) {
  EXPECT_EQ(characters(texts::serverInstructions), 2748u);
}

TEST(Texts, TheStopHooksLineHasItsLength) { EXPECT_EQ(texts::stopHookLine.size(), 105u); }

}  // namespace
}  // namespace quillpost
