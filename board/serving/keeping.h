#pragma once

// Looking after a board's file, whoever has it open.

#include "board/serving/store.h"
#include "model/request.h"
#include "model/response.h"

#include <string_view>

namespace quillpost::board {

/// Whether a method is one of these.
bool isFileKeeping(std::string_view method);

/// Carries out an export, an import, a backup or a check of the person's; `body` names the other
/// file. A check that finds something is an error that says what.
TeamworkResponse keepFile(Store& store, const TeamworkRequest& request);

}  // namespace quillpost::board
