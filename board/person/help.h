#pragma once

// What quillpost-board says of itself, made of its rows.

#include "board/person/commands.h"

#include <string>

namespace quillpost::board {

/// All commands, on one screen.
std::string overview();

/// One command: how it is written, what it is for, its options.
std::string helpOn(const Command& command);

/// The page of the manual, for mandoc.
std::string manualPage();

/// The commands as the guide lists them, in Markdown.
std::string commandList();

}  // namespace quillpost::board
