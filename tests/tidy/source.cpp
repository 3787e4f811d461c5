#include "tidy/source.h"

#include "harness/sections.h"
#include "harness/temp_dir.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <utility>

namespace quillpost::tidy {
namespace {

bool isWordByte(char byte) {
  return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '_';
}

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

  bool insideText() const { return state_ == State::raw; }

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

std::string trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n");
  if (first == std::string_view::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(" \t\n") + 1 - first));
}

bool isOnlyLiteral(std::string_view code) {
  const std::string text = trimmed(code);
  return text.starts_with('"') && text.find_first_not_of("\" ,;)}") == std::string::npos;
}

/// The head without "template <...>" and words that say nothing about the kind.
std::string_view withoutPrefixes(std::string_view head) {
  while (true) {
    head.remove_prefix(std::min(head.find_first_not_of(' '), head.size()));
    if (head.starts_with("template")) {
      std::size_t depth = 0, i = head.find('<');
      for (; i < head.size(); ++i) {
        if (head[i] == '<') ++depth;
        if (head[i] == '>' && --depth == 0) break;
      }
      head.remove_prefix(std::min(i, head.size() - 1) + 1);
    } else if (head.starts_with("inline ")) {
      head.remove_prefix(std::string_view("inline ").size());
    } else {
      return head;
    }
  }
}

Kind kindOf(std::string_view whole) {
  const std::string_view head = withoutPrefixes(whole);
  const auto begins = [&](std::string_view word) {
    return head.starts_with(word) && (head.size() == word.size() || !isWordByte(head[word.size()]));
  };
  if (head.empty()) return Kind::other;
  if (begins("namespace") || head == "extern \" \"") return Kind::space;
  for (const std::string_view word : {"struct", "class", "union", "enum"}) {
    if (begins(word)) return Kind::type;
  }
  for (const std::string_view word :
       {"using", "typedef", "static_assert", "friend", "concept", "extern"}) {
    if (begins(word)) return Kind::other;
  }
  if (head.find("operator") != std::string_view::npos) return Kind::function;
  const std::size_t call = head.find('(');
  return call < head.find('=') ? Kind::function : Kind::data;
}

/// Walks over the code once and writes down each declaration when it ends.
class Walker {
 public:
  std::vector<Declaration> walk(const Source& source) {
    for (line_ = 0; line_ < source.code.size(); ++line_) {
      for (const char byte : source.code[line_]) take(byte);
      take(' ');
    }
    return std::move(found_);
  }

 private:
  void take(char byte) {
    if (skipped_ > 0) {  // inside a body or a list
      if (byte == '{') ++skipped_;
      if (byte == '}' && --skipped_ == 0) closeSkipped();
      return;
    }
    if (byte == '(') ++parentheses_;
    if (byte == ')' && parentheses_ > 0) --parentheses_;
    if (byte == '{') {
      open();
    } else if (byte == '}') {
      clearHead();
      if (open_.empty()) return;
      open_.back().close = line_;
      found_.push_back(std::move(open_.back()));
      open_.pop_back();
    } else if (byte == ';') {
      if (!head_.empty()) found_.push_back(declaration(false));
      clearHead();
    } else if (byte == ':' && isAccess(head_)) {
      clearHead();
    } else if (byte != ' ' || !head_.empty()) {
      if (head_.empty()) first_ = line_;
      if (byte != ' ' || head_.back() != ' ') head_ += byte;
    }
  }

  void open() {
    Declaration opened = declaration(true);
    if (parentheses_ > 0) opened.kind = Kind::data;  // the braces of a default argument
    if (opened.kind == Kind::space || (opened.kind == Kind::type && !isEnum(opened))) {
      open_.push_back(std::move(opened));
      clearHead();
    } else {
      skipping_ = std::move(opened);
      skipped_ = 1;
    }
  }

  /// A list goes on to its semicolon, so that its head stays; a body ends the declaration.
  void closeSkipped() {
    if (skipping_.kind == Kind::data) return;
    skipping_.close = line_;
    found_.push_back(std::move(skipping_));
    clearHead();
  }

  void clearHead() {
    head_.clear();
    parentheses_ = 0;
  }

  Declaration declaration(bool hasBody) const {
    Declaration result;
    result.head = trimmed(head_);
    result.kind = kindOf(result.head);
    result.first = first_;
    result.open = result.close = line_;
    result.hasBody = hasBody;
    result.atNamespaceScope = std::all_of(
        open_.begin(), open_.end(), [](const Declaration& d) { return d.kind == Kind::space; });
    result.isDetail = isSpecialisation(result) || isQualified(result) ||
                      std::any_of(open_.begin(), open_.end(), [](const Declaration& d) {
                        return d.head == "namespace detail";
                      });
    return result;
  }

  static bool isSpecialisation(const Declaration& declaration) {
    const std::string_view name = withoutPrefixes(declaration.head);
    return declaration.kind == Kind::type && name.find('<') < name.find(" : ");
  }

  /// Whether it defines a function that stands in a class or namespace above.
  static bool isQualified(const Declaration& declaration) {
    const std::string_view head = std::string_view(declaration.head);
    const std::string_view name = head.substr(0, head.find('('));
    return declaration.kind == Kind::function &&
           name.substr(name.rfind(' ') + 1).find("::") != std::string_view::npos;
  }

  static bool isAccess(std::string_view head) {
    return head == "public" || head == "protected" || head == "private";
  }

  static bool isEnum(const Declaration& declaration) {
    return withoutPrefixes(declaration.head).starts_with("enum");
  }

  std::vector<Declaration> found_, open_;
  Declaration skipping_;
  std::size_t skipped_ = 0, parentheses_ = 0, line_ = 0, first_ = 0;
  std::string head_;
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
    const bool beganInside = masker.insideText();
    source.code.push_back(source.isCode() ? masker.mask(line) : std::string(line.size(), ' '));
    if (trimmed(line) == "// clang-format on") fenced = false;
    source.fenced.push_back(fenced);
    if (trimmed(line) == "// clang-format off") fenced = true;
    source.literal.push_back(beganInside || isOnlyLiteral(source.code.back()));
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

std::vector<Declaration> declarationsOf(const Source& source) { return Walker().walk(source); }

}  // namespace quillpost::tidy
