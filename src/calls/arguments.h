#pragma once

// What the agent passed to a tool, read leniently: a value of the wrong kind counts as absent, and
// the app judges the rest.

#include "json/value.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {

/// The arguments of one call. Not owned.
class Arguments {
 public:
  explicit Arguments(const json::TreeObject& object) : object_(object) {}

  /// A text; nothing for any other kind.
  std::optional<std::string> text(std::string_view name) const;
  /// A flag; nothing for any other kind.
  std::optional<bool> flag(std::string_view name) const;
  /// A number without its fraction, or a text that is a whole decimal integer; nothing for a value
  /// outside 64 bits and for any other kind.
  std::optional<int64_t> integer(std::string_view name) const;
  /// The texts of a list in order, its other elements left out; nothing for any other kind.
  std::optional<std::vector<std::string>> texts(std::string_view name) const;

  /// Reads an argument as the kind of value that `out` holds.
  void read(std::string_view name, std::optional<std::string>& out) const { out = text(name); }
  void read(std::string_view name, std::optional<bool>& out) const { out = flag(name); }
  void read(std::string_view name, std::optional<int64_t>& out) const { out = integer(name); }
  void read(std::string_view name, std::optional<std::vector<std::string>>& out) const {
    out = texts(name);
  }

 private:
  const json::TreeObject& object_;
};

}  // namespace quillpost
