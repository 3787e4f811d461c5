#pragma once

// Every tool of the board, in the order of the list. mcp/catalogue.h turns the rows into schemas
// for clients, and render/ into what follows an answer.

#include "tools/backlog.h"
#include "tools/claims.h"
#include "tools/discussions.h"
#include "tools/plan.h"
#include "tools/reviews.h"
#include "tools/seats.h"
#include "tools/squad.h"
#include "tools/tool.h"
#include "tools/waiting.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace quillpost {

// clang-format off

/// The subjects in the order of the list.
inline constexpr Subject subjects[] = {
    {"Your seat",              seatTools},
    {"The goal",               planTools},
    {"The backlog",            backlogTools},
    {"Work on a task",         claimTools},
    {"Reviews and comments",   reviewTools},
    {"Discussions",            discussionTools},
    {"Waiting",                waitingTools},
    {"Other agents, helpers",  squadTools},
};

// clang-format on

/// Every tool that is offered, always all of them.
inline constexpr auto tools = [] {
  constexpr std::size_t count = [] {
    std::size_t sum = 0;
    for (const Subject& subject : subjects) sum += subject.tools.size();
    return sum;
  }();
  std::array<Tool, count> rows;
  Tool* next = rows.data();
  for (const Subject& subject : subjects) next = std::ranges::copy(subject.tools, next).out;
  return rows;
}();

/// The tool of that name; null when there is none.
constexpr const Tool* findTool(std::string_view name) {
  for (const Tool& tool : tools)
    if (tool.name == name) return &tool;
  return nullptr;
}

/// Whether a tool has that name.
constexpr bool isTool(std::string_view name) {
  return std::ranges::find(tools, name, &Tool::name) != tools.end();
}

/// The tool that a verb of the command line means: its name, with "-" or with "_", or one of its
/// shorter ones. Null for a word that is none of these.
const Tool* findByVerb(std::string_view verb);

}  // namespace quillpost
