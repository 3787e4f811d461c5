#include "harness/golden_text.h"

#include "base/text.h"
#include "harness/paths.h"
#include "harness/tool_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace quillpost::testing {
namespace {

using Texts = std::map<std::string, std::string, std::less<>>;

void replaceAll(std::string& text, std::string_view old, std::string_view by) {
  for (std::size_t at = text.find(old); at != std::string::npos;
       at = text.find(old, at + by.size()))
    text.replace(at, old.size(), by);
}

/// A line of texts.golden is a name, the text's length, and the text with its line feeds as "\n".
const Texts& textsByName() {
  static const Texts all = [] {
    Texts texts;
    std::ifstream file(inTests("golden/texts.golden"), std::ios::binary);
    for (std::string line; std::getline(file, line);) {
      const std::size_t afterName = line.find('\t');
      std::string text = line.substr(line.find('\t', afterName + 1) + 1);
      replaceAll(text, "\\n", "\n");
      texts.emplace(line.substr(0, afterName), std::move(text));
    }
    for (const auto& entry : std::filesystem::directory_iterator(toolBlocks())) {
      const std::string tool = entry.path().filename().string();
      const std::string hint = lineOf(toolBlock(tool), "hint");
      if (!hint.empty()) texts.emplace("hint of " + tool, hint);
    }
    return texts;
  }();
  return all;
}

/// What stands between the quotes of a JSON string that holds `text`, which has no control
/// character but the line feed.
std::string insideJson(std::string text) {
  replaceAll(text, "\\", "\\\\");
  replaceAll(text, "\"", "\\\"");
  replaceAll(text, "\n", "\\n");
  return text;
}

}  // namespace

std::string goldenText(std::string_view name) {
  const auto found = textsByName().find(name);
  if (found != textsByName().end()) return found->second;
  ADD_FAILURE() << name << " is no golden text";
  return {};
}

std::string expanded(std::string_view pattern, Quoting quoting) {
  std::string out;
  while (true) {
    const std::size_t begin = pattern.find("{{");
    out += pattern.substr(0, begin);
    if (begin == std::string_view::npos) return out;
    const std::size_t end = pattern.find("}}", begin);
    const std::string text = goldenText(pattern.substr(begin + 2, end - begin - 2));
    out += quoting == Quoting::json ? insideJson(text) : text;
    if (end == std::string_view::npos) return out;
    pattern.remove_prefix(end + 2);
  }
}

std::string abbreviatedJson(std::string json) {
  constexpr std::size_t shortest = 150;  // a line of a screen and a half
  std::vector<std::pair<std::string, std::string>> texts;
  for (const auto& [name, text] : textsByName())
    if (text.size() >= shortest) texts.emplace_back(insideJson(text), text::cat("{{", name, "}}"));
  // One text may hold another.
  std::stable_sort(texts.begin(), texts.end(), [](const auto& one, const auto& other) {
    return one.first.size() > other.first.size();
  });
  for (const auto& [text, name] : texts) replaceAll(json, text, name);
  return json;
}

}  // namespace quillpost::testing
