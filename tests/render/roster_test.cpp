#include "render/roster.h"

#include "harness/golden.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

using testing::expanded;
using testing::expandedJson;
using testing::objectText;
using testing::sameText;

std::string agentText(const TeamworkAgent& agent) {
  return objectText([&](json::Object& out) { addAgent(out, agent); });
}

TeamworkAgent plainAgent() {
  TeamworkAgent agent;
  agent.id = "seat-1";
  agent.fingerprint = "#a3f9";
  agent.leaseSecondsRemaining = 60;
  return agent;
}

TEST(AddAgent, ShowsWhatIsThereAndLeavesOutTheRest) {
  struct Row {
    std::string_view name;
    void (*change)(TeamworkAgent&);
    std::string_view expected;
  };
  // clang-format off
  const std::vector<Row> rows = {
      {"nothing but a lease", [](TeamworkAgent&) {},
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"a lease that has run out", [](TeamworkAgent& a) { a.leaseSecondsRemaining = -5; },
       R"({"id":"#a3f9","leaseSecondsRemaining":-5})"},
      {"the caller", [](TeamworkAgent& a) { a.isSelf = true; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"isSelf":true})"},
      {"names", [](TeamworkAgent& a) { a.handle = "KQ3"; a.name = "Ada"; a.status = "reading"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"handle":"KQ3","name":"Ada","status":"reading"})"},
      {"a role", [](TeamworkAgent& a) { a.role = "reviewer"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"role":"reviewer"})"},
      {"an empty role", [](TeamworkAgent& a) { a.role = ""; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"the plain authority", [](TeamworkAgent& a) { a.authority = "contributor"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"a lead", [](TeamworkAgent& a) { a.authority = "lead"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"authority":"lead"})"},
      {"an empty authority", [](TeamworkAgent& a) { a.authority = ""; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"authority":""})"},
      {"one who may verify", [](TeamworkAgent& a) { a.canVerify = true; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"canVerify":true})"},
      {"idle", [](TeamworkAgent& a) { a.idle = true; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"idle":true})"},
      {"stood down", [](TeamworkAgent& a) { a.stoodDown = true; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"stoodDown":true})"},
      {"no claim", [](TeamworkAgent& a) { a.activeClaims = 0; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"a claim less than none", [](TeamworkAgent& a) { a.activeClaims = -1; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"one claim", [](TeamworkAgent& a) { a.activeClaims = 1; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"busy":1})"},
      {"on another Mac", [](TeamworkAgent& a) { a.device = "Air"; },
       R"({"id":"#a3f9","device":"Air"})"},
      {"on another Mac with an empty seat", [](TeamworkAgent& a) { a.device = "Air"; a.seatPresence = ""; },
       R"({"id":"#a3f9","device":"Air"})"},
      {"on another Mac with a seat", [](TeamworkAgent& a) { a.device = "Air"; a.seatPresence = "live"; },
       R"({"id":"#a3f9","seat":"live","seatNote":"{{seatNote}}","device":"Air"})"},
      {"a seat without a Mac", [](TeamworkAgent& a) { a.seatPresence = "live"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"on a Mac without a name", [](TeamworkAgent& a) { a.device = ""; a.seatPresence = "live"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
      {"quiet", [](TeamworkAgent& a) { a.quietForSeconds = 125; },
       R"({"id":"#a3f9","quietForSeconds":125,"quietNote":"{{quietNote(2)}}","leaseSecondsRemaining":60})"},
      {"a note on the role", [](TeamworkAgent& a) { a.roleNote = "since today"; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60,"roleNote":"since today"})"},
      {"an empty note on the role", [](TeamworkAgent& a) { a.roleNote = ""; },
       R"({"id":"#a3f9","leaseSecondsRemaining":60})"},
  };
  // clang-format on
  for (const Row& row : rows) {
    TeamworkAgent agent = plainAgent();
    row.change(agent);
    EXPECT_TRUE(sameText(expandedJson(row.expected), agentText(agent))) << row.name;
  }
}

TEST(AddAgent, KeepsTheOrderOfItsMembers) {
  TeamworkAgent agent = plainAgent();
  agent.quietForSeconds = 125;
  agent.device = "Air";
  agent.seatPresence = "live";
  agent.isSelf = true;
  agent.handle = "KQ3";
  agent.name = "Ada \"the\" first";
  agent.status = "reading";
  agent.role = "reviewer";
  agent.authority = "lead";
  agent.canVerify = true;
  agent.idle = true;
  agent.stoodDown = true;
  agent.activeClaims = 2;
  agent.roleNote = "since today";
  EXPECT_TRUE(sameText(
      expandedJson(R"({"id":"#a3f9","quietForSeconds":125,"quietNote":"{{quietNote(2)}}",)"
                   R"("seat":"live","seatNote":"{{seatNote}}","isSelf":true,"handle":"KQ3",)"
                   R"("name":"Ada \"the\" first","status":"reading","role":"reviewer",)"
                   R"("authority":"lead","canVerify":true,"idle":true,"stoodDown":true,"busy":2,)"
                   R"("device":"Air","roleNote":"since today"})"),
      agentText(agent)));
}

TEST(AddAgent, CountsTheQuietInWholeMinutesTowardZero) {
  struct Row {
    int64_t seconds;
    std::string_view minutes;
  };
  const std::vector<Row> rows = {
      {0, "0"},
      {59, "0"},
      {60, "1"},
      {125, "2"},
      {-59, "0"},
      {-125, "-2"},
      {std::numeric_limits<int64_t>::max(), "153722867280912930"},
      {std::numeric_limits<int64_t>::min(), "-153722867280912930"},
  };
  for (const Row& row : rows) {
    TeamworkAgent agent = plainAgent();
    agent.quietForSeconds = row.seconds;
    const std::string begin =
        "\"quietNote\":\"This seat has not made a call of its own for " + std::string(row.minutes);
    EXPECT_NE(agentText(agent).find(begin + "m. Its terminal is open"), std::string::npos)
        << row.seconds;
  }
}

TEST(OpenPanesParagraph, NamesTheTerminals) {
  EXPECT_EQ(openPanesParagraph({}), std::nullopt);
  const std::vector<TeamworkPane> one = {{"KQ3"}};
  EXPECT_TRUE(
      sameText(expanded("{{alsoOpenHere(KQ3; onePane)}}"), openPanesParagraph(one).value_or("")));
  const std::vector<TeamworkPane> two = {{"KQ3"}, {"M2X"}};
  EXPECT_TRUE(sameText(expanded("{{alsoOpenHere(KQ3, M2X; severalPanes)}}"),
                       openPanesParagraph(two).value_or("")));
}

TeamworkMac mac(std::string_view tag, std::string_view name) {
  TeamworkMac made;
  made.tag = tag;
  made.name = name;
  return made;
}

TeamworkMac awake(TeamworkMac made) {
  made.awake = true;
  return made;
}

TeamworkMac addressable(TeamworkMac made) {
  made.addressable = true;
  return made;
}

TeamworkMac led(TeamworkMac made, const TeamworkLead& lead) {
  made.lead = lead;
  return made;
}

const TeamworkLead asking{"Ada", false, false};
const TeamworkLead unasking{"Bo", true, false};
const TeamworkLead paused{"Cy", false, true};

TEST(OtherDevicesParagraph, PutsEveryMacIntoEveryGroupItBelongsTo) {
  const TeamworkMac studio = mac("studio", "Studio");
  const TeamworkMac air = mac("air", "Air");
  struct Row {
    std::string_view name;
    std::vector<TeamworkMac> macs;
    std::string_view expected;
  };
  const std::string_view heading = "YOUR OTHER DEVICES ON THIS THREAD.";
  // clang-format off
  const std::vector<Row> rows = {
      {"one that takes work", {led(awake(studio), asking)},
       R"( Taking work: Studio (@studio, lead "Ada"). request_hands to: "@studio" sends the work to that device's lead, which may start its own helpers there; name no agent.)"},
      {"two that take work", {led(awake(air), unasking), led(awake(studio), asking)},
       R"( Taking work: Air (@air, lead "Bo", runs without asking for approval), Studio (@studio, lead "Ada"). request_hands to: "@air" sends the work to that device's lead, which may start its own helpers there; name no agent.)"},
      {"paused", {led(awake(studio), paused), led(awake(air), paused)},
       " {{devicesPaused(Studio (@studio), Air (@air))}}"},
      {"no lead", {awake(studio), awake(air)},
       " {{devicesNotTakingWork(Studio (@studio), Air (@air))}}"},
      {"asleep", {studio, air},
       " {{devicesUnreachable(Studio (@studio), Air (@air))}}"},
      {"asleep with leads", {led(studio, asking), led(air, paused)},
       " {{devicesUnreachable(Studio (@studio), Air (@air))}}"},
      {"asleep and addressable", {addressable(studio), addressable(air)},
       " {{devicesUnreachable(Studio (@studio), Air (@air))}}"
       " {{devicesAddressable(Studio (@studio), Air (@air); studio)}}"},
      {"only the second is addressable", {awake(studio), addressable(awake(air))},
       " {{devicesNotTakingWork(Studio (@studio), Air (@air))}}"
       " assign_task and send_message reach the terminals on Air (@air) by their own addresses (KQ3@air), and wait there if that device is asleep."},
      {"one of each",
       {addressable(mac("e", "E")), awake(mac("d", "D")), led(awake(mac("c", "C")), paused),
        led(awake(addressable(mac("b", "B"))), unasking)},
       R"( Taking work: B (@b, lead "Bo", runs without asking for approval). request_hands to: "@b" sends the work to that device's lead, which may start its own helpers there; name no agent.)"
       " Paused: C (@c). Its lead's command changed and waits for the person to confirm it there, so request_hands to it is refused."
       " Not taking work from other devices: D (@d). request_hands to it is refused; that is the person's switch on that device."
       " Unreachable: E (@e). Asleep, shut, or off the network, so request_hands to it is refused."
       " assign_task and send_message reach the terminals on E (@e), B (@b) by their own addresses (KQ3@e), and wait there if that device is asleep."},
      {"nameless", {mac("", "")},
       " Unreachable:  (@). Asleep, shut, or off the network, so request_hands to it is refused."},
  };
  // clang-format on
  for (const Row& row : rows) {
    EXPECT_TRUE(sameText(std::string(heading) + expanded(row.expected),
                         otherDevicesParagraph(row.macs).value_or("nothing")))
        << row.name;
  }
}

TEST(OtherDevicesParagraph, IsAbsentWithoutAnotherMac) {
  EXPECT_EQ(otherDevicesParagraph({}), std::nullopt);
}

TEST(CommandLineNote, ArguesForBackgroundWaitsUnlessThatWasSaidElsewhere) {
  EXPECT_TRUE(sameText(expanded("{{commandLineNote}}"), commandLineNote(true)));
  EXPECT_TRUE(
      sameText(expanded("{{commandLineNote}}{{commandLineWaits}}"), commandLineNote(false)));
}

}  // namespace
}  // namespace quillpost
