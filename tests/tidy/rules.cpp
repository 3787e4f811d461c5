#include "tidy/rules.h"

#include <algorithm>
#include <array>

namespace quillpost::tidy {
namespace {

// clang-format off
constexpr auto allRules = std::to_array<Rule>({
    {"folders",         checkFolders},
    {"systemHeaders",   checkSystemHeaders},
    {"pragmaOnce",      checkPragmaOnce},
    {"fileLengths",     checkFileLengths},
    {"documentation",   checkDocumentation},
    {"testPerSource",   checkTestPerSource},
    {"targets",         checkTargets},
    {"words",           checkWords},
});
// clang-format on

}  // namespace

std::ostream& operator<<(std::ostream& out, const Finding& finding) {
  return out << finding.path << ":" << finding.line << ": " << finding.what;
}

std::span<const Rule> rules() { return allRules; }

Findings check(std::string_view rule, const Tree& tree) {
  const auto* const found = std::ranges::find(allRules, rule, &Rule::name);
  if (found == allRules.end()) return {{std::string(rule), 0, "is not a rule"}};
  return found->check(tree);
}

}  // namespace quillpost::tidy
