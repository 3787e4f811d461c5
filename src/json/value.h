#pragma once

// JSON as a tree: what the client sends is read this way, because its ids and tokens go back as
// they came and its arguments are looked at by name.

#include <boost/json/object.hpp>
#include <boost/json/storage_ptr.hpp>
#include <boost/json/value.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace quillpost::json {

using Tree = boost::json::value;
using TreeObject = boost::json::object;

/// The tree of one whole JSON text, its memory taken from `storage`, which must outlive it. Nothing
/// when the text is not valid JSON in valid UTF-8, nests deeper than json::depthLimit, or has a
/// number too large for a double. Integers of 64 bits, signed or not, keep all their digits; every
/// other number becomes the nearest double.
std::optional<Tree> parse(std::string_view text, boost::json::storage_ptr storage = {});

/// Appends a tree as compact JSON text.
void appendTree(std::string& out, const Tree& tree);

/// A member of an object, or null when there is none.
const Tree* find(const TreeObject& object, std::string_view key);
/// A member that is a text; nothing when it is missing or anything else.
std::optional<std::string_view> findText(const TreeObject& object, std::string_view key);
/// A member that is an object; null when it is missing or anything else.
const TreeObject* findObject(const TreeObject& object, std::string_view key);

}  // namespace quillpost::json
