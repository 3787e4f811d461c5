#pragma once

// Compact JSON written straight onto the end of a text. An Object or Array is open for as long as
// it lives and closes itself; while a child is open, nothing may be added to its parent. Texts are
// written as UTF-8, slashes are not escaped, and members stand in the order of adding.

#include "json/escaped_text.h"

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost::json {

/// Appends the inside of a JSON string: `text`, which must be UTF-8, with its quotes, backslashes
/// and control characters escaped. One pass, whatever the text holds.
void appendEscaped(std::string& out, std::string_view text);

/// Appends `text` as a whole JSON string, quotes included.
void appendString(std::string& out, std::string_view text);

/// Where an object or array is written: onto a text as JSON, or onto one that will stand inside a
/// JSON string, where every quote and every escape is itself escaped.
enum class Nesting { outermost, insideString };

/// Appends `number` in decimal.
void appendInteger(std::string& out, int64_t number);

/// An integer of any width, but neither a boolean nor a character. Its value must fit a signed
/// 64-bit number.
template <class T>
concept Integer = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

class Array;

/// An object under construction at the end of `out`.
class Object {
 public:
  /// Opens the object; the text must outlive it.
  explicit Object(std::string& out) : Object(out, Nesting::outermost) {}
  explicit Object(EscapedText& out) : Object(out.escaped_, Nesting::insideString) {}
  ~Object() { out_.push_back('}'); }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  /// Adds a member: a text, a flag, a signed 64-bit integer, a list of texts. `key` is written as
  /// it stands, so it must need no escaping.
  Object& add(std::string_view key, std::string_view text);
  // Nothing but a bool is a flag: a plain bool parameter would quietly take literals too.
  Object& add(std::string_view key, std::same_as<bool> auto flag) { return addFlag(key, flag); }
  Object& add(std::string_view key, Integer auto number) {
    return addInteger(key, static_cast<int64_t>(number));
  }
  Object& add(std::string_view key, const std::vector<std::string>& texts) {
    return add(key, std::span<const std::string>(texts));
  }
  Object& add(std::string_view key, std::span<const std::string> texts);
  /// Adds nothing when there is no value.
  template <class T>
  Object& add(std::string_view key, const std::optional<T>& value) {
    return value ? add(key, *value) : *this;
  }

  /// Adds `true`, or nothing.
  Object& addIf(std::string_view key, bool flag) { return flag ? addFlag(key, true) : *this; }
  /// Adds a text that is there and not empty, or nothing.
  Object& addText(std::string_view key, std::string_view text) {
    return text.empty() ? *this : add(key, text);
  }
  // A template, so that a text never turns into an optional one on its way here.
  template <class Text>
  Object& addText(std::string_view key, const std::optional<Text>& text) {
    return text ? addText(key, std::string_view(*text)) : *this;
  }
  /// Adds `null`.
  Object& addNull(std::string_view key) { return addJson(key, "null"); }
  /// Adds the value, or `null` when there is none.
  template <class T>
  Object& addOrNull(std::string_view key, const std::optional<T>& value) {
    return value ? add(key, *value) : addNull(key);
  }
  /// Adds a value that is JSON text already.
  Object& addJson(std::string_view key, std::string_view json);

  /// Adds an array with one object for each item, in their order: `addMembers(object, item)` fills
  /// it.
  template <class Items, class AddMembers>
  Object& list(std::string_view key, const Items& items, AddMembers addMembers);
  /// Adds an array that `addElements(array)` fills.
  template <class AddElements>
  Object& array(std::string_view key, AddElements addElements);

  /// Opens a child, which must close before anything else is added here.
  Object object(std::string_view key);
  Array array(std::string_view key);

 private:
  friend class Array;
  Object(std::string& out, Nesting nesting) : out_(out), nesting_(nesting) { out_.push_back('{'); }
  Object& addFlag(std::string_view key, bool flag);
  Object& addInteger(std::string_view key, int64_t number);
  void writeKey(std::string_view key);

  std::string& out_;
  Nesting nesting_;
  bool empty_ = true;
};

/// An array under construction at the end of `out`.
class Array {
 public:
  /// Opens the array; the text must outlive it.
  explicit Array(std::string& out) : Array(out, Nesting::outermost) {}
  explicit Array(EscapedText& out) : Array(out.escaped_, Nesting::insideString) {}
  ~Array() { out_.push_back(']'); }
  Array(const Array&) = delete;
  Array& operator=(const Array&) = delete;

  /// Adds an element.
  Array& add(std::string_view text);
  /// Adds a text in two pieces, one after the other, as one element.
  Array& add(std::string_view begin, std::string_view rest);
  /// Adds an element that is JSON text already.
  Array& addJson(std::string_view json);

  /// Adds one object for each item, in their order: `addMembers(object, item)` fills it.
  template <class Items, class AddMembers>
  Array& list(const Items& items, AddMembers addMembers) {
    for (const auto& item : items) {
      Object child = object();
      addMembers(child, item);
    }
    return *this;
  }

  /// Opens a child, which must close before anything else is added here.
  Object object();

 private:
  friend class Object;
  Array(std::string& out, Nesting nesting) : out_(out), nesting_(nesting) { out_.push_back('['); }
  void separate();

  std::string& out_;
  Nesting nesting_;
  bool empty_ = true;
};

template <class Items, class AddMembers>
Object& Object::list(std::string_view key, const Items& items, AddMembers addMembers) {
  array(key).list(items, addMembers);
  return *this;
}

template <class AddElements>
Object& Object::array(std::string_view key, AddElements addElements) {
  Array child = array(key);
  addElements(child);
  return *this;
}

/// Appends an object that `addMembers(object)` fills.
template <class Text, class AddMembers>
void appendObject(Text& out, AddMembers addMembers) {
  Object object(out);
  addMembers(object);
}

/// Appends an array with one object for each item, as `Array::list` adds them.
template <class Text, class Items, class AddMembers>
void appendList(Text& out, const Items& items, AddMembers addMembers) {
  Array(out).list(items, addMembers);
}

}  // namespace quillpost::json
