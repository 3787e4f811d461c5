#pragma once

// The process environment as a door: a name to an optional text.

#include <cstdlib>
#include <optional>
#include <string>

namespace quillpost {

/// Looks variables up by name.
struct Environment {
  virtual ~Environment() = default;
  /// The variable's value, which may be empty; nothing when the variable is not set.
  /// The bytes are as the system holds them and need not be UTF-8.
  virtual std::optional<std::string> get(const char* name) const = 0;
};

/// The environment this process was started with.
struct ProcessEnvironment final : Environment {
  std::optional<std::string> get(const char* name) const override {
    // No thread of ours changes the environment, which is what the lookup must be safe from.
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    if (value == nullptr) return std::nullopt;
    return std::string(value);
  }
};

}  // namespace quillpost
