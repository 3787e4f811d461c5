#pragma once

// The form of a row: one tool, with all that is said of it anywhere. The rows stand in the headers
// of their subjects, and tools/tools.h joins them.

#include "json/names.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

namespace quillpost {

/// What kind of JSON value a property takes; `strings` is an array of strings. Its words are those
/// of JSON Schema.
enum class Type { string, integer, boolean, strings };

template <>
struct json::Names<Type> {
  // clang-format off
  static constexpr std::array<Name<Type>, 4> rows{{
      {Type::string,  "string"},
      {Type::integer, "integer"},
      {Type::boolean, "boolean"},
      {Type::strings, "array"},
  }};
  // clang-format on
  static_assert(allDifferent(rows));
};

/// Whether a call may leave the property out.
enum class Need { optional, required };

/// One property of a tool's arguments.
struct Property {
  std::string_view name;
  Type type;
  Need need;
  std::string_view description;
  /// The closed set of its values in the order shown to the agent; empty when any value will do.
  std::span<const std::string_view> oneOf = {};
};

/// A few words in a row, in order. One too many does not compile.
class Words {
 public:
  constexpr Words() = default;
  constexpr Words(std::initializer_list<std::string_view> words) : count_(words.size()) {
    std::ranges::copy(words, words_.begin());
  }

  constexpr const std::string_view* begin() const { return words_.data(); }
  constexpr const std::string_view* end() const { return words_.data() + count_; }
  constexpr std::size_t size() const { return count_; }
  constexpr bool contains(std::string_view word) const {
    return std::find(begin(), end(), word) != end();
  }

 private:
  std::array<std::string_view, 3> words_{};
  std::size_t count_ = 0;
};

/// How a tool is called from a shell. Every property can be given as an option; the first few
/// words of a call are positionals.
struct CommandLine {
  /// The verb.
  std::string_view name = {};
  /// Other verbs that mean the same: what people guess.
  Words otherNames = {};
  /// The properties that the words of a call fill, in order, all that are required among them. A
  /// list, which is the last, takes all the words that are left, perhaps none.
  Words positionals = {};
  /// The text that one more word fills; empty when there is none.
  std::string_view mainText = {};
  /// How a positional that is a boolean is spelled, besides true and false; empty without one.
  std::string_view yes = {};
  std::string_view no = {};
  /// What the verb is for, in the few words that fit beside it on a line.
  std::string_view gist = {};
  /// Two lines that can be typed, without the program's name.
  Words examples = {};
};

/// One tool: all that is said of it anywhere. An argument that a property fills in the request has
/// its rule in calls/request_rules.cpp.
struct Tool {
  std::string_view name;
  std::string_view description;
  /// Empty for a tool that takes no arguments.
  std::span<const Property> properties = {};
  /// What an agent is told to do after a write; empty when it is told nothing.
  std::string_view nextHint = {};
  /// What an answer without content means; empty when there is nothing to say but that.
  std::string_view emptyWords = {};
  CommandLine commandLine = {};
};

/// The tools of one subject, under the heading that they have in a list of verbs.
struct Subject {
  std::string_view heading;
  std::span<const Tool> tools;
};

/// The tool's property of that name; null when it has none.
constexpr const Property* findProperty(const Tool& tool, std::string_view name) {
  for (const Property& property : tool.properties)
    if (property.name == name) return &property;
  return nullptr;
}

/// Whether no name stands twice among `names`.
template <std::size_t Count>
constexpr bool namesAreUnique(std::array<std::string_view, Count> names) {
  std::ranges::sort(names);
  return std::ranges::adjacent_find(names) == names.end();
}

}  // namespace quillpost
