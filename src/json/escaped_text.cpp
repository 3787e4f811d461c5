#include "json/escaped_text.h"

#include "json/escapes.h"
#include "json/writer.h"

#include <algorithm>

namespace quillpost::json {
namespace {

/// What a reader gets of the inside of a string that was written here.
std::string unescaped(std::string_view inside) {
  std::string disguised(inside);
  disguiseEscapes(disguised);
  std::string plain;
  plain.reserve(disguised.size());
  appendUndisguised(plain, disguised);
  return plain;
}

}  // namespace

EscapedText& EscapedText::append(std::string_view plain) {
  sentencesBegin_ = std::min(sentencesBegin_, escaped_.size());
  appendEscaped(escaped_, plain);
  return *this;
}

std::string EscapedText::json() const {
  return unescaped(std::string_view(escaped_).substr(0, sentencesBegin_));
}

std::string EscapedText::sentences() const {
  return unescaped(std::string_view(escaped_).substr(std::min(sentencesBegin_, escaped_.size())));
}

}  // namespace quillpost::json
