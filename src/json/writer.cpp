#include "json/writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstring>

namespace quillpost::json {
namespace {

constexpr bool mustEscape(unsigned char byte) { return byte < 0x20 || byte == '"' || byte == '\\'; }

/// How many bytes at the start of `text` stand for themselves. Eight bytes are judged at a time:
/// a byte-wise scan made escaping the largest single cost of a long reply.
std::size_t plainPrefix(std::string_view text) {
  constexpr uint64_t ones = 0x0101010101010101U;
  constexpr uint64_t highBits = 0x8080808080808080U;
  const auto zeroBytes = [](uint64_t word) { return (word - ones) & ~word & highBits; };
  std::size_t at = 0;
  for (; at + sizeof(uint64_t) <= text.size(); at += sizeof(uint64_t)) {
    uint64_t word = 0;
    std::memcpy(&word, text.data() + at, sizeof word);
    const uint64_t control = (word - ones * 0x20) & ~word & highBits;
    if ((control | zeroBytes(word ^ (ones * '"')) | zeroBytes(word ^ (ones * '\\'))) != 0) break;
  }
  while (at < text.size() && !mustEscape(static_cast<unsigned char>(text[at]))) ++at;
  return at;
}

/// How one byte is written inside a JSON string.
class Escape {
 public:
  constexpr Escape() = default;
  constexpr explicit Escape(std::size_t byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr std::string_view shortForms = "\"\"\\\\\bb\ff\nn\rr\tt";
    push('\\');
    for (std::size_t at = 0; at < shortForms.size(); at += 2) {
      if (static_cast<std::size_t>(shortForms[at]) != byte) continue;
      push(shortForms[at + 1]);
      return;
    }
    for (const char letter : std::string_view("u00")) push(letter);
    push(digits[byte >> 4U]);
    push(digits[byte & 0xFU]);
  }

  /// The escape as it is written inside a JSON string itself.
  constexpr Escape escaped() const {
    Escape twice;
    for (const char letter : text()) {
      if (letter == '\\' || letter == '"') twice.push('\\');
      twice.push(letter);
    }
    return twice;
  }

  constexpr std::string_view text() const { return {text_.data(), size_}; }

 private:
  constexpr void push(char letter) { text_[size_++] = letter; }

  std::array<char, 7> text_{};  // an escaped \u001f
  std::size_t size_ = 0;
};

/// The escapes of every byte up to the backslash, the last that needs one, for both nestings.
constexpr auto escapes = [] {
  std::array<std::array<Escape, 2>, '\\' + 1> table;
  for (std::size_t byte = 0; byte < table.size(); ++byte)
    table[byte] = {Escape(byte), Escape(byte).escaped()};
  return table;
}();

/// Appends the inside of a JSON string, which may be part of another string's inside.
void appendInside(std::string& out, std::string_view text, Nesting nesting) {
  while (true) {
    const std::size_t plain = plainPrefix(text);
    out.append(text.substr(0, plain));
    if (plain == text.size()) return;
    const auto& forms = escapes[static_cast<unsigned char>(text[plain])];
    out.append(forms[nesting == Nesting::outermost ? 0 : 1].text());
    text.remove_prefix(plain + 1);
  }
}

constexpr std::string_view quoteFor(Nesting nesting) {
  return nesting == Nesting::outermost ? "\"" : "\\\"";
}

/// Appends a string that needs no escapes and is no part of `out`. It grows the text once: keys and
/// short texts are most of a long result, and three appends for each took a twentieth of its time.
void appendPlain(std::string& out, std::string_view plain, Nesting nesting) {
  const bool nested = nesting == Nesting::insideString;
  const std::size_t begin = out.size();
  out.resize(begin + plain.size() + (nested ? 4 : 2));
  char* at = out.data() + begin;
  const auto putQuote = [&] {
    if (nested) *at++ = '\\';
    *at++ = '"';
  };
  putQuote();
  at = std::copy(plain.begin(), plain.end(), at);
  putQuote();
}

void appendWhole(std::string& out, std::string_view text, Nesting nesting) {
  if (plainPrefix(text) == text.size()) return appendPlain(out, text, nesting);
  out.append(quoteFor(nesting));
  appendInside(out, text, nesting);
  out.append(quoteFor(nesting));
}

/// Appends JSON text as it stands where it is written.
void appendJson(std::string& out, std::string_view json, Nesting nesting) {
  if (nesting == Nesting::outermost) {
    out.append(json);
  } else {
    appendEscaped(out, json);
  }
}

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  appendInside(out, text, Nesting::outermost);
}

void appendString(std::string& out, std::string_view text) {
  appendWhole(out, text, Nesting::outermost);
}

void appendInteger(std::string& out, int64_t number) {
  std::array<char, 20> digits{};  // the lowest 64-bit number has nineteen digits and a sign
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  out.append(digits.begin(), end);
}

void Object::writeKey(std::string_view key) {
  if (!empty_) out_.push_back(',');
  empty_ = false;
  appendPlain(out_, key, nesting_);
  out_.push_back(':');
}

Object& Object::add(std::string_view key, std::string_view text) {
  writeKey(key);
  appendWhole(out_, text, nesting_);
  return *this;
}

Object& Object::add(std::string_view key, std::span<const std::string> texts) {
  Array list = array(key);
  for (const std::string& text : texts) list.add(text);
  return *this;
}

Object& Object::addFlag(std::string_view key, bool flag) {
  return addJson(key, flag ? "true" : "false");
}

Object& Object::addInteger(std::string_view key, int64_t number) {
  writeKey(key);
  appendInteger(out_, number);
  return *this;
}

Object& Object::addJson(std::string_view key, std::string_view json) {
  writeKey(key);
  appendJson(out_, json, nesting_);
  return *this;
}

Object Object::object(std::string_view key) {
  writeKey(key);
  return {out_, nesting_};
}

Array Object::array(std::string_view key) {
  writeKey(key);
  return {out_, nesting_};
}

void Array::separate() {
  if (!empty_) out_.push_back(',');
  empty_ = false;
}

Array& Array::add(std::string_view text) {
  separate();
  appendWhole(out_, text, nesting_);
  return *this;
}

Array& Array::add(std::string_view begin, std::string_view rest) {
  separate();
  out_.append(quoteFor(nesting_));
  appendInside(out_, begin, nesting_);
  appendInside(out_, rest, nesting_);
  out_.append(quoteFor(nesting_));
  return *this;
}

Array& Array::addJson(std::string_view json) {
  separate();
  appendJson(out_, json, nesting_);
  return *this;
}

Object Array::object() {
  separate();
  return {out_, nesting_};
}

}  // namespace quillpost::json
