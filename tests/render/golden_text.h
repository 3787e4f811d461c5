#pragma once

// Expected results that quote the fixed texts by name, so that a whole result fits on a screen.

#include "harness/paths.h"
#include "harness/tool_block.h"
#include "json/writer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace quillpost::testing {

/// The texts of texts.golden by name.
inline const std::map<std::string, std::string, std::less<>>& goldenTextsByName() {
  static const std::map<std::string, std::string, std::less<>> all = [] {
    std::map<std::string, std::string, std::less<>> texts;
    std::ifstream file(testing::inTests("golden/texts.golden"), std::ios::binary);
    for (std::string line; std::getline(file, line);) {
      const std::size_t afterName = line.find('\t');
      const std::size_t afterLength = line.find('\t', afterName + 1);
      std::string text = line.substr(afterLength + 1);
      for (std::size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at))
        text.replace(at, 2, "\n");
      texts.emplace(line.substr(0, afterName), text);
    }
    return texts;
  }();
  return all;
}

/// The text of that name, or for "hint of TOOL" that tool's; a failure when there is none.
inline std::string goldenText(std::string_view name) {
  constexpr std::string_view hintOf = "hint of ";
  if (name.starts_with(hintOf)) return lineOf(toolBlock(name.substr(hintOf.size())), "hint");
  const auto found = goldenTextsByName().find(name);
  if (found != goldenTextsByName().end()) return found->second;
  ADD_FAILURE() << name << " is no golden text";
  return {};
}

/// What stands between the quotes of a JSON string that holds `text`, which has no control
/// character but the line feed.
inline std::string insideJson(std::string_view text) {
  std::string inside;
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') inside += '\\';
    inside += byte == '\n' ? std::string("\\n") : std::string(1, byte);
  }
  return inside;
}

/// Where quoted texts go.
enum class Quoting { plain, json };

/// `pattern` with every {{name}} replaced by the golden text of that name.
inline std::string expanded(std::string_view pattern, Quoting quoting = Quoting::plain) {
  std::string out;
  while (true) {
    const std::size_t begin = pattern.find("{{");
    out += pattern.substr(0, begin);
    if (begin == std::string_view::npos) return out;
    const std::size_t end = pattern.find("}}", begin);
    const std::string text = goldenText(pattern.substr(begin + 2, end - begin - 2));
    out += quoting == Quoting::json ? insideJson(text) : text;
    pattern.remove_prefix(end + 2);
  }
}

/// The same inside JSON strings.
inline std::string expandedJson(std::string_view pattern) {
  return expanded(pattern, Quoting::json);
}

/// The text of one object whose members `fill` adds.
template <class Fill>
std::string objectText(Fill fill) {
  std::string out;
  {
    json::Object object(out);
    fill(object);
  }
  return out;
}

}  // namespace quillpost::testing
