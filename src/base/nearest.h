#pragma once

// What somebody meant who wrote a word that there is not.

#include <span>
#include <string_view>

namespace quillpost {

/// The word among `words` that differs from `written` by the fewest letters added, lost, changed or
/// swapped, whatever their case and whether "-" or "_"; empty when even that one differs by more
/// than a third of its letters. Of two the first counts.
std::string_view nearestWord(std::string_view written, std::span<const std::string_view> words);

}  // namespace quillpost
