#pragma once

// The person's methods that show something: each answered with a sheet.

#include "board/rules/board.h"
#include "board/rules/leases.h"
#include "board/serving/service.h"
#include "board/serving/store.h"
#include "model/request.h"
#include "model/response.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace quillpost::board {

/// Whether a method is one of these.
bool isViewing(std::string_view method);

/// What the Threads that are meant, in the order of their making, have to show. Of several the
/// first counts for what only one can show. Refused in words when there is no such thing.
TeamworkResponse view(std::span<const Board* const> boards, const Store& store,
                      const TeamworkRequest& request, Moment at);

/// Whether whoever asks has seen all that there is to show, so that the answer may be held back.
bool isUpToDate(std::span<const Board* const> boards, const TeamworkRequest& request);

/// All three, for the desk.
inline constexpr Viewing viewing = {.shows = isViewing, .isUpToDate = isUpToDate, .view = view};

/// The revision of all these Threads together, which goes up whenever one of theirs does.
int64_t revisionOf(std::span<const Board* const> boards);

}  // namespace quillpost::board
