#include "board/rules/debates.h"

#include "base/text.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

constexpr std::string_view openState = "open";
constexpr std::string_view resolvedState = "resolved";

/// How much of a question or a volley a wake quotes, in characters.
constexpr std::size_t quoteLength = 120;

std::string discussionID(int64_t number) {
  const std::string digits = text::cat(number);
  return "d" + std::string(6 - std::min<std::size_t>(6, digits.size()), '0') + digits;
}

std::vector<std::string> partiesOf(const TeamworkDiscussion& discussion) {
  std::vector<std::string> parties = discussion.addressedTo;
  if (std::ranges::find(parties, discussion.openedBy) == parties.end()) {
    parties.push_back(discussion.openedBy);
  }
  return parties;
}

/// Wakes every party; whoever moves is left out by the announcement.
std::vector<Notice> noticesFor(const TeamworkDiscussion& discussion, std::string_view kind,
                               std::string_view what) {
  std::vector<Notice> notices;
  const std::string summary = text::cat(discussion.id, ": ", cutWithMark(what, quoteLength));
  for (const std::string& party : partiesOf(discussion)) notices.push_back({party, kind, summary});
  return notices;
}

/// After a volley its author owes nothing; the opener's volley is for all others to answer, and
/// anybody else's for the opener, besides those who have not answered yet.
void passTurn(TeamworkDiscussion& discussion, const std::string& author) {
  std::vector<std::string>& owing = discussion.owingParties;
  if (author == discussion.openedBy) {
    owing = partiesOf(discussion);
  } else if (!owes(discussion, discussion.openedBy)) {
    owing.push_back(discussion.openedBy);
  }
  std::erase(owing, author);
}

}  // namespace

bool isOpen(const TeamworkDiscussion& discussion) { return discussion.state == openState; }

bool isParty(const TeamworkDiscussion& discussion, std::string_view party) {
  return discussion.openedBy == party ||
         std::ranges::find(discussion.addressedTo, party) != discussion.addressedTo.end();
}

bool owes(const TeamworkDiscussion& discussion, std::string_view party) {
  return isOpen(discussion) &&
         std::ranges::find(discussion.owingParties, party) != discussion.owingParties.end();
}

std::vector<const TeamworkDiscussion*> openOn(const Board& board, std::string_view taskID) {
  std::vector<const TeamworkDiscussion*> found;
  for (const auto& [id, discussion] : board.discussions)
    if (isOpen(discussion) && discussion.taskID.value_or("") == taskID) {
      found.push_back(&discussion);
    }
  return found;
}

std::string counterpart(const Board& board, const TeamworkDiscussion& discussion,
                        std::string_view party) {
  std::vector<std::string> others =
      owes(discussion, party) ? partiesOf(discussion) : discussion.owingParties;
  std::erase(others, party);
  for (std::string& other : others) other = calling(board, other);
  return text::join(others, ", ");
}

const TeamworkDiscussion& openDebate(Board& board, TeamworkDiscussion discussion) {
  discussion.id = discussionID(++board.editThread().discussionsOpened);
  discussion.state = openState;
  discussion.owingParties = discussion.addressedTo;
  const TeamworkDiscussion& opened = board.discussions.put(std::move(discussion));
  announce(board, {"discussionOpened", opened.taskID.value_or(""), opened.openedBy},
           noticesFor(opened, "discussionOpened", opened.question));
  return opened;
}

void addVolley(Board& board, const TeamworkDiscussion& discussion,
               TeamworkDiscussion::Volley volley) {
  TeamworkDiscussion& changed = board.discussions.edit(discussion);
  if (!isParty(changed, volley.author)) changed.addressedTo.push_back(volley.author);
  passTurn(changed, volley.author);
  const std::string author = volley.author;
  const std::string quote = volley.body;
  changed.volleys.push_back(std::move(volley));
  changed.volleysSinceHuman = author == human ? 0 : changed.volleysSinceHuman + 1;
  if (author == human) changed.escalated = false;
  announce(board, {"discussionReplied", changed.taskID.value_or(""), author},
           noticesFor(changed, "discussionReply", quote));
  if (changed.volleysSinceHuman < volleyCap || changed.escalated) return;
  changed.escalated = true;
  if (!owes(changed, human)) changed.owingParties.emplace_back(human);
  announce(board, {"discussionEscalated", changed.taskID.value_or(""), ""},
           noticesFor(changed, "discussionEscalated", "put before the human"));
}

void resolve(Board& board, const TeamworkDiscussion& discussion, const std::string& resolution,
             const std::string& by) {
  TeamworkDiscussion& changed = board.discussions.edit(discussion);
  changed.state = resolvedState;
  changed.resolution = resolution;
  changed.resolvedBy = by;
  changed.owingParties.clear();
  announce(board, {"discussionResolved", changed.taskID.value_or(""), by},
           noticesFor(changed, "discussionResolved", resolution));
}

}  // namespace quillpost::board
