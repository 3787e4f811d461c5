#include "tidy/source.h"

#include "harness/sections.h"
#include "harness/temp_dir.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

namespace quillpost::tidy {

bool isWordByte(char byte) {
  return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_';
}

namespace {

/// Blanks out what is not code, line by line; what is open at a line's end stays open.
class Masker {
 public:
  std::string mask(std::string_view line) {
    std::string code(line);
    if (state_ == State::code && line.substr(0, line.find_first_not_of(' ') + 1).ends_with('#')) {
      return std::string(line.size(), ' ');
    }
    for (std::size_t i = 0; i < code.size(); ++i) i = maskAt(code, i);
    if (state_ == State::text || state_ == State::letter) state_ = State::code;
    return code;
  }

 private:
  enum class State { code, comment, text, letter, raw };

  /// Looks at one byte; gives the last one that it dealt with.
  std::size_t maskAt(std::string& code, std::size_t i) {
    const std::string_view rest = std::string_view(code).substr(i);
    switch (state_) {
      case State::code:
        return maskCode(code, i);
      case State::comment:
        if (rest.starts_with("*/")) return leave(code, i, 2);
        break;
      case State::raw:
        if (rest.starts_with(rawEnd_)) return leave(code, i, rawEnd_.size());
        break;
      case State::text:
      case State::letter:
        if (code[i] == '\\' && rest.size() > 1) {
          code[i] = code[i + 1] = ' ';
          return i + 1;
        }
        if (code[i] == (state_ == State::text ? '"' : '\'')) {
          state_ = State::code;
          return i;
        }
        break;
    }
    code[i] = ' ';
    return i;
  }

  std::size_t maskCode(std::string& code, std::size_t i) {
    const std::string_view rest = std::string_view(code).substr(i);
    if (rest.starts_with("//")) {
      std::fill(code.begin() + static_cast<std::ptrdiff_t>(i), code.end(), ' ');
      return code.size();
    }
    if (rest.starts_with("/*")) {
      state_ = State::comment;
      code[i] = code[i + 1] = ' ';
      return i + 1;
    }
    if (code[i] == '"') {
      if (i > 0 && code[i - 1] == 'R') {
        state_ = State::raw;
        rawEnd_ = ")" + std::string(rest.substr(1, rest.find('(') - 1)) + "\"";
      } else {
        state_ = State::text;
      }
    } else if (code[i] == '\'' && !separatesDigits(code, i)) {
      state_ = State::letter;
    }
    return i;
  }

  std::size_t leave(std::string& code, std::size_t i, std::size_t length) {
    const bool wasText = state_ == State::raw;
    state_ = State::code;
    std::fill_n(code.begin() + static_cast<std::ptrdiff_t>(i), length, ' ');
    if (wasText) code[i + length - 1] = '"';
    return i + length - 1;
  }

  static bool separatesDigits(std::string_view code, std::size_t i) {
    std::size_t start = i;
    while (start > 0 && (isWordByte(code[start - 1]) || code[start - 1] == '\'')) --start;
    return start < i && std::isdigit(static_cast<unsigned char>(code[start])) != 0;
  }

  State state_ = State::code;
  std::string rawEnd_;
};

bool isLookedAt(const std::filesystem::directory_entry& entry) {
  const std::string name = entry.path().filename().string();
  if (!entry.is_directory()) return !name.starts_with('.') || name.starts_with(".clang");
  return name == ".ci" || (!name.starts_with('.') && name != "build" && name != "node_modules");
}

}  // namespace

Source readSource(std::string path, std::string_view text) {
  Source source;
  source.path = std::move(path);
  source.lines = testing::linesOf(text);
  Masker masker;
  bool fenced = false;
  for (const std::string& line : source.lines) {
    source.code.push_back(source.isCode() ? masker.mask(line) : std::string(line.size(), ' '));
    if (line.ends_with("// clang-format on")) fenced = false;
    source.fenced.push_back(fenced);
    if (line.ends_with("// clang-format off")) fenced = true;
  }
  return source;
}

std::vector<Source> readTree(const std::string& root) {
  std::vector<Source> sources;
  std::filesystem::recursive_directory_iterator entry(root), end;
  for (; entry != end; ++entry) {
    if (!isLookedAt(*entry)) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file()) {
      const std::string text = testing::readFile(entry->path().string());
      const bool isBinary = text.find('\0') != std::string::npos;
      if (isBinary) continue;
      sources.push_back(readSource(entry->path().lexically_relative(root).generic_string(), text));
    }
  }
  std::ranges::sort(sources, {}, &Source::path);
  return sources;
}

}  // namespace quillpost::tidy
