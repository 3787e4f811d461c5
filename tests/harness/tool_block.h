#pragma once

// The independent copy of what a tool says: one file of named sections in golden/tools/ for each,
// written by hand.

#include "harness/paths.h"
#include "harness/sections.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::testing {

/// Where the blocks are.
inline std::string toolBlocks() { return inTests("golden/tools"); }

/// The block of a tool; a failure, and no section, when it has none.
inline SectionFile toolBlock(std::string_view tool) {
  std::ifstream file(toolBlocks() + "/" + std::string(tool), std::ios::binary);
  EXPECT_TRUE(file.is_open()) << tool << " has no block in tests/golden/tools/";
  const std::string text(std::istreambuf_iterator<char>(file), {});
  return parseSections(text);
}

/// The one line of a section; empty when the block has no such section.
inline std::string lineOf(const SectionFile& block, std::string_view section) {
  const std::string_view body = block.body(section);
  return std::string(body.substr(0, body.find('\n')));
}

/// The verbs that a text speaks of, in their order. They are the only words with an underscore
/// between small letters, so that a tool that was renamed or misspelt shows here.
inline std::vector<std::string_view> verbsIn(std::string_view text) {
  const auto isInside = [](char c) { return c == '_' || (c >= 'a' && c <= 'z'); };
  std::vector<std::string_view> verbs;
  for (std::size_t at = text.find('_'); at < text.size(); at = text.find('_', at + 1)) {
    std::size_t from = at;
    while (from > 0 && isInside(text[from - 1])) --from;
    while (at + 1 < text.size() && isInside(text[at + 1])) ++at;
    if (at > from) verbs.push_back(text.substr(from, at + 1 - from));
  }
  return verbs;
}

}  // namespace quillpost::testing
