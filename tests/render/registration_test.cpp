#include "render/registration.h"

#include "harness/golden.h"
#include "render/golden_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillpost {
namespace {

using testing::expandedJson;
using testing::objectText;
using testing::sameText;
using Profile = TeamworkClientProfile::Profile;

std::string registrationText(const std::optional<TeamworkSquadState>& squad,
                             const SeatState& state) {
  return objectText([&](json::Object& out) { addRegistration(out, squad, state); });
}

const std::string opening =
    R"({"nextStep":"{{registeredNextStep}}","protocol":"{{boardProtocol}}","access":"{{access}}",)"
    R"("rules":["{{rules.1}}","{{rules.2}}","{{rules.3}}","{{rules.4}}","{{rules.5}}",)"
    R"("{{rules.6}}","{{rules.7}}","{{rules.8}}","{{rules.9}}"],)"
    R"("commandLine":"{{commandLineNote}})";

TEST(Registration, TellsTheRulesAndTheCommandLine) {
  EXPECT_TRUE(sameText(expandedJson(opening + R"({{commandLineWaits}}"})"),
                       registrationText(std::nullopt, {})));
}

TEST(Registration, ShortensTheCommandLineNoteForOneClientAlone) {
  SeatState state;
  state.clientProfile = Profile::claude;
  EXPECT_TRUE(sameText(expandedJson(opening + R"("})"), registrationText(std::nullopt, state)));
  for (const Profile other : {Profile::codex, Profile::antigravity, Profile::cursor}) {
    state.clientProfile = other;
    EXPECT_TRUE(sameText(expandedJson(opening + R"({{commandLineWaits}}"})"),
                         registrationText(std::nullopt, state)));
  }
}

TEST(Registration, NamesTheHandleWhenItIsKnown) {
  SeatState state;
  state.selfHandle = "KQ3";
  EXPECT_TRUE(sameText(
      expandedJson(opening +
                   R"({{commandLineWaits}}","yourHandle":"KQ3","handleNote":"{{handleNote}}"})"),
      registrationText(std::nullopt, state)));
}

TEST(Registration, TellsTheSquadWhenItsStateIsKnown) {
  TeamworkSquadState off;
  off.mode = "off";
  const std::string rest =
      R"("canAddress":false,"canSpawn":false,"helperLimit":null,"helpersRunning":null,)"
      R"("helpersLeft":null,"lead":null,"helpers":[]},)";
  EXPECT_TRUE(sameText(expandedJson(opening + R"({{commandLineWaits}}","squad":{"mode":"off",)" +
                                    rest + R"("squadNote":"{{squadOff}}"})"),
                       registrationText(off, {})));
  TeamworkSquadState on;
  on.mode = "on";
  SeatState state;
  state.selfHandle = "KQ3";
  EXPECT_TRUE(sameText(
      expandedJson(opening +
                   R"({{commandLineWaits}}","yourHandle":"KQ3","handleNote":"{{handleNote}}",)"
                   R"("squad":{"mode":"on",)" +
                   rest + R"("squadNote":"{{squadOn}}","helpersNote":"{{noHelpersHere}}"})"),
      registrationText(on, state)));
}

}  // namespace
}  // namespace quillpost
