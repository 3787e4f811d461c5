#pragma once

// What `qp` says about itself: from the tools' rows, so that no verb is explained twice. Needs no
// board.

#include "qp/line.h"
#include "tools/tool.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// The verbs by group, on one screen.
std::string overview();

/// One verb: how it is called, what it is for, its arguments, its other names, two examples.
std::string verbHelp(const Tool& tool);

/// One of the command line's own commands: how it is called, and what it is for.
std::string commandHelp(const CommandRow& row);

/// Two lines that call the verb and make sense.
std::vector<std::string> examplesOf(const Tool& tool);

/// The protocol in full, or in short.
std::string brief();
std::string shortBrief();

}  // namespace quillpost
