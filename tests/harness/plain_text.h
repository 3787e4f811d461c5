#pragma once

// What a reader gets of a text that was kept escaped.

#include "json/value.h"
#include "json/writer.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace quillpost::testing {

/// The text as a JSON reader gets it, which fails the test when it is no JSON string's inside.
inline std::string plainText(const json::EscapedText& text) {
  const std::optional<json::Tree> read = json::parse("\"" + text.escaped() + "\"");
  EXPECT_TRUE(read.has_value()) << text.escaped();
  if (!read) return {};
  const boost::json::string& plain = read->get_string();
  return std::string(plain.data(), plain.size());
}

}  // namespace quillpost::testing
