#pragma once

// Where the parts of a JSON text stand, for whoever keeps some of them and needs no tree of all.
// The text is one that this program wrote: it is taken to be JSON, and any other text gives parts
// of it without a meaning.

#include <string_view>
#include <vector>

namespace quillpost::json {

/// A member of an object: its key as it stands between the quotation marks, and its value's text.
struct MemberSlice {
  std::string_view key;
  std::string_view value;
};

/// The members of an object in their order; none for a text that is no object.
std::vector<MemberSlice> membersOf(std::string_view object);

/// The texts of an array's elements in their order; none for a text that is no array.
std::vector<std::string_view> elementsOf(std::string_view array);

}  // namespace quillpost::json
