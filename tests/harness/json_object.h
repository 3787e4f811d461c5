#pragma once

// JSON written in a test, as the values that the program works on.

#include "json/value.h"
#include "model/coding.h"
#include "model/response.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace quillpost::testing {

/// The object that `text` is; an empty one, and a failure of the test, when it is none.
inline json::TreeObject objectFrom(std::string_view text) {
  const std::optional<json::Tree> tree = json::parse(text);
  const json::TreeObject* object = tree ? tree->if_object() : nullptr;
  EXPECT_NE(object, nullptr) << "not a JSON object: " << text;
  return object != nullptr ? *object : json::TreeObject();
}

/// The answer of the app that `text` is; an empty one, and a failure of the test, when it is none.
inline TeamworkResponse responseFrom(std::string_view text) {
  std::optional<TeamworkResponse> response = decodeResponse(std::string(text));
  EXPECT_TRUE(response.has_value()) << "not a response: " << text;
  return response ? *std::move(response) : TeamworkResponse();
}

/// A member of an object as compact JSON text; "absent" when there is none.
inline std::string memberOf(const json::TreeObject& object, std::string_view key) {
  const json::Tree* member = json::find(object, key);
  if (member == nullptr) return "absent";
  std::string text;
  json::appendTree(text, *member);
  return text;
}

}  // namespace quillpost::testing
