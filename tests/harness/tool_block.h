#pragma once

// The independent copy of what a tool says: one file of named sections in golden/tools/ for each,
// written by hand.

#include "harness/paths.h"
#include "harness/sections.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

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

}  // namespace quillpost::testing
