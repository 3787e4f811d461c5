#include "board/rules/debates.h"

#include "base/text.h"
#include "board/rules/ids.h"
#include "board/rules/limits.h"
#include "board/rules/moves.h"
#include "board/rules/people.h"

#include <algorithm>
#include <utility>

namespace quillpost::board {

namespace {

constexpr std::string_view resolvedDiscussion = "resolved";

/// How much of a question or a volley a wake quotes, in characters.
constexpr std::size_t quoteLength = 120;

std::vector<std::string> partiesOf(const TeamworkDiscussion& discussion) {
  std::vector<std::string> parties = discussion.addressedTo;
  if (std::ranges::find(parties, discussion.openedBy) == parties.end()) {
    parties.push_back(discussion.openedBy);
  }
  return parties;
}

/// A move on a discussion; `what` is a quotation.
Move moveOn(const TeamworkDiscussion& discussion, MoveKind kind, const std::string& by,
            int64_t atMs, std::string_view what) {
  return {kind, discussion.taskID.value_or(""), by, atMs,
          text::cat(discussion.id, ": ", cutWithMark(what, quoteLength))};
}

/// Wakes every party; whoever moves is left out by the announcement.
std::vector<Notice> noticesFor(const TeamworkDiscussion& discussion, WakeKind kind,
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
    // What has been put before the person stays there until they speak.
    if (discussion.escalated && !owes(discussion, human)) owing.emplace_back(human);
  } else if (!owes(discussion, discussion.openedBy)) {
    owing.push_back(discussion.openedBy);
  }
  std::erase(owing, author);
}

bool isHere(const Board& board, std::string_view party) {
  const Seat* seat = seatOf(board, party);
  return party == human || (seat != nullptr && isLive(*seat));
}

/// What the person has said is for whoever of the parties is here when all who owe a volley are
/// gone. When everybody is, it waits for their coming back.
void passTurnOfTheGone(const Board& board, TeamworkDiscussion& discussion) {
  const auto isGone = [&](const std::string& party) { return !isHere(board, party); };
  if (!std::ranges::all_of(discussion.owingParties, isGone)) return;
  std::vector<std::string> here = partiesOf(discussion);
  std::erase_if(here, [&](const std::string& party) { return party == human || isGone(party); });
  if (!here.empty()) discussion.owingParties = std::move(here);
}

}  // namespace

bool isOpen(const TeamworkDiscussion& discussion) { return discussion.state == goingOn; }

bool isParty(const TeamworkDiscussion& discussion, std::string_view party) {
  return discussion.openedBy == party ||
         std::ranges::find(discussion.addressedTo, party) != discussion.addressedTo.end();
}

bool owes(const TeamworkDiscussion& discussion, std::string_view party) {
  return isOpen(discussion) &&
         std::ranges::find(discussion.owingParties, party) != discussion.owingParties.end();
}

std::vector<const TeamworkDiscussion*> openOn(const Board& board, std::string_view taskID) {
  return board.discussions.with({openByTask, taskID});
}

std::string counterpart(const Board& board, const TeamworkDiscussion& discussion,
                        std::string_view party) {
  std::vector<std::string> others =
      owes(discussion, party) ? partiesOf(discussion) : discussion.owingParties;
  std::erase(others, party);
  for (std::string& other : others) other = calling(board, other);
  return text::join(others, ", ");
}

TeamworkDiscussion& openDebate(Board& board, TeamworkDiscussion discussion, int64_t nowMs) {
  discussion.id = discussionID(++board.count().discussionsOpened);
  discussion.state = goingOn;
  discussion.owingParties = discussion.addressedTo;
  TeamworkDiscussion& opened = board.discussions.put(std::move(discussion));
  announce(board,
           moveOn(opened, MoveKind::discussionOpened, opened.openedBy, nowMs, opened.question),
           noticesFor(opened, WakeKind::discussionOpened, opened.question));
  if (isAbandoned(board, opened)) escalate(board, opened, nowMs);
  return opened;
}

void addVolley(Board& board, TeamworkDiscussion& discussion, TeamworkDiscussion::Volley volley) {
  if (!isParty(discussion, volley.author)) discussion.addressedTo.push_back(volley.author);
  passTurn(discussion, volley.author);
  discussion.volleysSinceHuman = volley.author == human ? 0 : discussion.volleysSinceHuman + 1;
  if (volley.author == human) discussion.escalated = false;
  announce(board,
           moveOn(discussion, MoveKind::discussionReplied, volley.author, volley.atMs, volley.body),
           noticesFor(discussion, WakeKind::discussionReply, volley.body));
  const int64_t nowMs = volley.atMs;
  discussion.volleys.push_back(std::move(volley));
  if (discussion.volleysSinceHuman == 0) {
    // It does not come back to the person whose answer it has.
    passTurnOfTheGone(board, discussion);
  } else if (discussion.volleysSinceHuman >= volleyCap || isAbandoned(board, discussion)) {
    escalate(board, discussion, nowMs);
  }
}

bool isAbandoned(const Board& board, const TeamworkDiscussion& discussion) {
  const auto isHereNow = [&](const std::string& party) { return isHere(board, party); };
  return std::ranges::none_of(discussion.addressedTo, isHereNow) ||
         std::ranges::none_of(discussion.owingParties, isHereNow);
}

void escalate(Board& board, TeamworkDiscussion& discussion, int64_t nowMs) {
  if (discussion.escalated) return;
  constexpr std::string_view words = "put before the human";
  discussion.escalated = true;
  if (!owes(discussion, human)) discussion.owingParties.emplace_back(human);
  announce(board, moveOn(discussion, MoveKind::discussionEscalated, "", nowMs, words),
           noticesFor(discussion, WakeKind::discussionEscalated, words));
}

void resolve(Board& board, TeamworkDiscussion& discussion, const Resolution& resolution) {
  discussion.state = resolvedDiscussion;
  discussion.resolution = resolution.words;
  discussion.resolvedBy = resolution.by;
  discussion.owingParties.clear();
  announce(board,
           moveOn(discussion, MoveKind::discussionResolved, resolution.by, resolution.atMs,
                  resolution.words),
           noticesFor(discussion, WakeKind::discussionResolved, resolution.words));
}

}  // namespace quillpost::board
