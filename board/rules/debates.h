#pragma once

// Discussions: who is party to one, who owes the next volley, when the person has to step in.

#include "board/rules/board.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::board {

/// The volleys after which a discussion that the person has not spoken in is put before them.
inline constexpr int64_t volleyCap = 8;

/// Whether a discussion is still going on.
bool isOpen(const TeamworkDiscussion& discussion);

/// Whether this fingerprint (or "human") opened it or was addressed.
bool isParty(const TeamworkDiscussion& discussion, std::string_view party);

/// Whether the next volley is for this party to make.
bool owes(const TeamworkDiscussion& discussion, std::string_view party);

/// The open discussions of a task, or of the whole board when `taskID` is empty.
std::vector<const TeamworkDiscussion*> openOn(const Board& board, std::string_view taskID);

/// Who the other side is, as a line calls them: those who owe a reply, or all other parties.
std::string counterpart(const Board& board, const TeamworkDiscussion& discussion,
                        std::string_view party);

/// A new discussion, put on the board with the next id; the addressees owe the first volley and are
/// woken. Everything but id, state and debts is taken from `discussion`.
TeamworkDiscussion& openDebate(Board& board, TeamworkDiscussion discussion, int64_t nowMs);

/// Adds a volley and wakes the other parties. At the cap the discussion escalates: the person owes
/// a volley too. What the person says is for those who owe the next volley, and when they are gone
/// for whoever of the parties is here; it does not come back to the person by itself.
void addVolley(Board& board, TeamworkDiscussion& discussion, TeamworkDiscussion::Volley volley);

/// Whether nobody is here any more who could go on with it: neither whoever it was addressed to,
/// nor, when others owe the next volley than these, any of those. The person is always here.
bool isAbandoned(const Board& board, const TeamworkDiscussion& discussion);

/// Puts a discussion before the person, who owes a volley then too; nothing when it is before them
/// already.
void escalate(Board& board, TeamworkDiscussion& discussion, int64_t nowMs);

/// What ends a discussion.
struct Resolution {
  std::string words;
  std::string by;
  /// When, in milliseconds since 1970.
  int64_t atMs = 0;
};

/// Closes a discussion and wakes the other parties.
void resolve(Board& board, TeamworkDiscussion& discussion, const Resolution& resolution);

}  // namespace quillpost::board
