#pragma once

// A command from its line to its exit status.

#include "qp/desk.h"
#include "qp/status.h"

#include <span>
#include <string>

namespace quillpost {

/// Carries out a line, which is the words after the program's name, and gives the exit status. What
/// it prints goes to the console. Nothing is sent when the line makes no sense.
Status runLine(std::span<const std::string> words, const Surroundings& around);

}  // namespace quillpost
