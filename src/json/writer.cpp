#include "json/writer.h"

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

void appendEscape(std::string& out, unsigned char byte) {
  switch (byte) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      break;
  }
  constexpr std::string_view digits = "0123456789abcdef";
  out += "\\u00";
  out += digits[byte >> 4U];
  out += digits[byte & 0xFU];
}

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  while (true) {
    const std::size_t plain = plainPrefix(text);
    out.append(text.substr(0, plain));
    if (plain == text.size()) return;
    appendEscape(out, static_cast<unsigned char>(text[plain]));
    text.remove_prefix(plain + 1);
  }
}

void appendString(std::string& out, std::string_view text) {
  out.push_back('"');
  appendEscaped(out, text);
  out.push_back('"');
}

void appendInteger(std::string& out, int64_t number) {
  std::array<char, 20> digits{};  // the lowest 64-bit number has nineteen digits and a sign
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  out.append(digits.begin(), end);
}

void Object::writeKey(std::string_view key) {
  if (!empty_) out_.push_back(',');
  empty_ = false;
  out_.push_back('"');
  out_.append(key);
  out_.append("\":");
}

Object& Object::add(std::string_view key, std::string_view text) {
  writeKey(key);
  appendString(out_, text);
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
  out_.append(json);
  return *this;
}

Object Object::object(std::string_view key) {
  writeKey(key);
  return Object(out_);
}

Array Object::array(std::string_view key) {
  writeKey(key);
  return Array(out_);
}

void Array::separate() {
  if (!empty_) out_.push_back(',');
  empty_ = false;
}

Array& Array::add(std::string_view text) {
  separate();
  appendString(out_, text);
  return *this;
}

Array& Array::add(std::string_view begin, std::string_view rest) {
  separate();
  out_.push_back('"');
  appendEscaped(out_, begin);
  appendEscaped(out_, rest);
  out_.push_back('"');
  return *this;
}

Array& Array::addJson(std::string_view json) {
  separate();
  out_.append(json);
  return *this;
}

Object Array::object() {
  separate();
  return Object(out_);
}

}  // namespace quillpost::json
