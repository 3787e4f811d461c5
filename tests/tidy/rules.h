#pragma once

// The house rules that a program can check. Each looks at the whole tree and says what breaks it.

#include "tidy/source.h"

#include <cstddef>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::tidy {

/// One place where a rule is broken.
struct Finding {
  std::string path;
  /// Counted from 1.
  std::size_t line = 0;
  /// What is wrong, and what would be right.
  std::string what;
};

/// Written as file:line: what, as tools expect it.
std::ostream& operator<<(std::ostream& out, const Finding& finding);

using Tree = std::vector<Source>;
using Findings = std::vector<Finding>;

/// A rule by name.
struct Rule {
  std::string_view name;
  Findings (*check)(const Tree& tree);
};

/// All of them.
std::span<const Rule> rules();

/// What one rule finds; a rule of an unknown name finds that.
Findings check(std::string_view rule, const Tree& tree);

/// Which files include which (include_rules.cpp).
Findings checkFolders(const Tree& tree);
Findings checkSystemHeaders(const Tree& tree);

/// What a file looks like (shape_rules.cpp).
Findings checkPragmaOnce(const Tree& tree);
Findings checkFileLengths(const Tree& tree);
Findings checkDocumentation(const Tree& tree);
Findings checkTestPerSource(const Tree& tree);
Findings checkTargets(const Tree& tree);

/// What stands in a file (word_rules.cpp).
Findings checkWords(const Tree& tree);

}  // namespace quillpost::tidy
