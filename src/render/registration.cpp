#include "render/registration.h"

#include "render/roster.h"
#include "render/squad.h"
#include "render/texts/registration.h"

#include <string_view>

namespace quillpost {
namespace {

void addRules(json::Array& out) {
  for (const std::string_view rule : texts::rules) out.add(rule);
}

void addSquadObject(json::Object& out, const TeamworkSquadState& squad) {
  json::Object child = out.object("squad");
  addSquad(child, squad);
}

void addSquadNotes(json::Object& out, const std::optional<TeamworkSquadState>& squad) {
  if (!squad) return;
  addSquadObject(out, *squad);
  out.add("squadNote", squadParagraph(squad->mode));
  out.add("helpersNote", helpersHereParagraph(squad));
}

}  // namespace

void addRegistration(json::Object& out, const std::optional<TeamworkSquadState>& squad,
                     const SeatState& state) {
  out.add("nextStep", texts::registeredNextStep);
  out.add("protocol", texts::boardProtocol);
  out.add("access", texts::access);
  out.array("rules", addRules);
  // Such a client reads what waits cost in the description of the tool that waits, at length.
  const bool toldElsewhere = traitsOf(state.clientProfile).turnsExitIntoTurn;
  out.add("commandLine", commandLineNote(toldElsewhere));
  if (state.selfHandle) {
    out.add("yourHandle", *state.selfHandle);
    out.add("handleNote", texts::handleNote);
  }
  addSquadNotes(out, squad);
}

}  // namespace quillpost
