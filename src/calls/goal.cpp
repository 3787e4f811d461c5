#include "calls/goal.h"

#include "base/text.h"

#include <string_view>

namespace quillpost {
namespace {

struct Extra {
  std::string_view argument;
  std::string_view label;
};

constexpr Extra extras[] = {
    {"purpose", "Purpose: "},
    {"constraints", "Constraints: "},
    {"nonGoals", "Non-goals: "},
    {"acceptableRisk", "Acceptable risk: "},
};

}  // namespace

std::optional<std::string> composeGoal(const Arguments& arguments) {
  std::optional<std::string> goal = arguments.text("description");
  if (!goal) goal = arguments.text("name");
  if (!goal) return std::nullopt;
  for (const Extra& extra : extras) {
    const std::optional<std::string> given = arguments.text(extra.argument);
    if (given && !given->empty()) goal->append(text::cat(" — ", extra.label, *given));
  }
  return goal;
}

}  // namespace quillpost
