#include "contrib/toml.h"

#include "base/text.h"

#include <cstddef>

namespace quillpost::contrib {
namespace {

std::string_view trimmed(std::string_view line) {
  const std::size_t start = line.find_first_not_of(" \t\r");
  if (start == std::string_view::npos) return {};
  return line.substr(start, line.find_last_not_of(" \t\r") - start + 1);
}

std::optional<std::string> readText(std::string_view source) {
  const bool isQuoted = source.size() >= 2 && source.front() == '"' && source.back() == '"';
  if (!isQuoted) return std::nullopt;
  const std::string_view inner = source.substr(1, source.size() - 2);
  if (inner.find_first_of("\"\\") != std::string_view::npos) return std::nullopt;
  return std::string(inner);
}

std::optional<std::vector<std::string>> readList(std::string_view source) {
  std::vector<std::string> list;
  const std::string_view inner = trimmed(source.substr(1, source.size() - 2));
  if (inner.empty()) return list;
  for (const std::string_view piece : text::split(inner, ',')) {
    if (trimmed(piece).empty() && piece.data() + piece.size() == inner.data() + inner.size())
      continue;  // what follows a comma at the end
    std::optional<std::string> element = readText(trimmed(piece));
    if (!element) return std::nullopt;
    list.push_back(*std::move(element));
  }
  return list;
}

std::optional<TomlValue> readValue(std::string_view source) {
  if (source.starts_with('[') && source.ends_with(']')) {
    std::optional<std::vector<std::string>> list = readList(source);
    if (list) return TomlValue(*std::move(list));
    return std::nullopt;
  }
  if (std::optional<std::string> words = readText(source)) return TomlValue(*std::move(words));
  if (const std::optional<int64_t> number = text::parseInteger(source))
    return TomlValue(static_cast<int>(*number));
  return std::nullopt;
}

}  // namespace

std::optional<Toml> parseToml(std::string_view source) {
  Toml toml;
  std::string table, pending;
  for (const std::string_view whole : text::split(source, '\n')) {
    const std::string_view line = trimmed(whole);
    if (line.empty() || line.starts_with('#')) continue;
    if (pending.empty() && line.starts_with('[') && line.ends_with(']')) {
      table = text::cat(line.substr(1, line.size() - 2), ".");
      continue;
    }
    pending += line;
    const std::size_t equals = pending.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const std::string_view value = trimmed(std::string_view(pending).substr(equals + 1));
    if (value.starts_with('[') && !value.ends_with(']')) continue;  // a list over several lines
    std::optional<TomlValue> read = readValue(value);
    if (!read) return std::nullopt;
    toml[text::cat(table, trimmed(std::string_view(pending).substr(0, equals)))] = *std::move(read);
    pending.clear();
  }
  if (!pending.empty()) return std::nullopt;
  return toml;
}

}  // namespace quillpost::contrib
