#pragma once

// An environment that a test makes up.

#include "base/environment.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace quillpost::testing {

/// An environment made of the entries it was given.
struct FakeEnvironment final : Environment {
  FakeEnvironment() = default;
  explicit FakeEnvironment(std::map<std::string, std::string> entries)
      : variables(std::move(entries)) {}

  std::optional<std::string> get(const char* name) const override {
    const auto found = variables.find(name);
    if (found == variables.end()) return std::nullopt;
    return found->second;
  }

  std::map<std::string, std::string> variables;
};

}  // namespace quillpost::testing
