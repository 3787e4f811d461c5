#pragma once

// JSON text decoded straight into records, in one pass over the parser's events and with no tree
// in between. What a record takes is described by a Shape, made at compile time from its field
// table; the reading itself (decoder.cpp) is one piece of code for all records.

#include "json/record.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillpost::json {

/// The deepest nesting that is read; deeper text counts as not JSON. Real messages have fewer than
/// twenty levels, and the parser spends a bounded piece of stack on each.
inline constexpr std::size_t depthLimit = 512;

struct Shape;

/// Room made for a list when its first element comes.
inline constexpr std::size_t usualLength = 4;

/// One row of a record as the reader sees it.
struct Row {
  std::string_view key;
  /// What a missing key means.
  Presence presence;
  /// Where in a record the value goes; an optional member is given an empty value by this.
  void* (*open)(void* record);
  /// How the value is taken.
  const Shape* shape;
};

/// How a value of one type is taken from JSON. Each shape has what one kind of value needs and
/// nothing else; a value of any other kind is a wrong type.
struct Shape {
  /// Takes a text; false when it is none of the words of a vocabulary.
  bool (*takeText)(void* target, std::string_view text) = nullptr;
  /// Takes an integer.
  void (*takeInteger)(void* target, int64_t number) = nullptr;
  /// Takes a boolean.
  void (*takeFlag)(void* target, bool flag) = nullptr;
  /// Appends an element to a list and says where it is, and the shape of every element.
  void* (*grow)(void* list) = nullptr;
  const Shape* element = nullptr;
  /// The rows of a record, which of them must come (bit by row), and what gives the member of one
  /// the value again that it begins with.
  std::span<const Row> rows = {};
  uint64_t needed = 0;
  void (*restore)(void* record, std::size_t row) = nullptr;
};

namespace detail {

template <class T>
struct ShapeMaker;

}  // namespace detail

/// The shape of a type: std::string, int64_t, bool, a vocabulary, a record, or a list of these.
template <class T>
inline constexpr const Shape& shapeOf = detail::ShapeMaker<T>::shape;

namespace detail {

template <>
struct ShapeMaker<std::string> {
  static constexpr Shape shape = {.takeText = [](void* target, std::string_view text) {
    *static_cast<std::string*>(target) = std::string(text);
    return true;
  }};
};

template <>
struct ShapeMaker<int64_t> {
  static constexpr Shape shape = {
      .takeInteger = [](void* target, int64_t number) { *static_cast<int64_t*>(target) = number; }};
};

template <>
struct ShapeMaker<bool> {
  static constexpr Shape shape = {
      .takeFlag = [](void* target, bool flag) { *static_cast<bool*>(target) = flag; }};
};

template <Named Kind>
struct ShapeMaker<Kind> {
  static constexpr Shape shape = {.takeText = [](void* target, std::string_view text) {
    const std::optional<Kind> value = fromWord<Kind>(text);
    if (value) *static_cast<Kind*>(target) = *value;
    return value.has_value();
  }};
};

template <class Element>
struct ShapeMaker<std::vector<Element>> {
  static constexpr Shape shape = {.grow = [](void* list) -> void* {
                                    auto& elements = *static_cast<std::vector<Element>*>(list);
                                    // Most lists are short: one allocation then holds them, where
                                    // doubling takes several.
                                    if (elements.capacity() == 0) elements.reserve(usualLength);
                                    return &elements.emplace_back();
                                  },
                                  .element = &shapeOf<Element>};
};

template <Record T>
struct ShapeMaker<T> {
  static constexpr auto fields = T::fields();
  static constexpr std::size_t count = std::tuple_size_v<decltype(T::fields())>;
  static_assert(count <= 64, "one bit a row");

  template <class Value>
  struct Unwrapped {
    using type = Value;
  };
  template <class Value>
  struct Unwrapped<std::optional<Value>> {
    using type = Value;
  };

  template <std::size_t I>
  static constexpr Row row() {
    using FieldType = std::tuple_element_t<I, decltype(T::fields())>;
    using Member =
        std::remove_reference_t<decltype(std::declval<T&>().*std::declval<FieldType>().member)>;
    using Value = typename Unwrapped<Member>::type;
    const auto open = [](void* record) -> void* {
      Member& member = static_cast<T*>(record)->*std::get<I>(fields).member;
      if constexpr (std::is_same_v<Member, Value>) {
        return &member;
      } else {
        return &member.emplace();
      }
    };
    return {std::get<I>(fields).key, std::get<I>(fields).presence, open, &shapeOf<Value>};
  }

  template <std::size_t... I>
  static constexpr auto makeRows(std::index_sequence<I...>) {
    return std::array<Row, count>{row<I>()...};
  }
  static constexpr std::array<Row, count> rows = makeRows(std::make_index_sequence<count>());

  static constexpr uint64_t needed() {
    uint64_t bits = 0;
    for (std::size_t i = 0; i < count; ++i)
      if (rows[i].presence == Presence::required) bits |= uint64_t{1} << i;
    return bits;
  }
  static void restore(void* record, std::size_t row) {
    T fresh{};
    std::size_t at = 0;
    forEachField<T>([&](const auto& field) {
      if (at++ == row) static_cast<T*>(record)->*field.member = std::move(fresh.*field.member);
    });
  }
  static constexpr Shape shape = {.rows = rows, .needed = needed(), .restore = restore};
};

/// Reads one object into the record at `target`. False when the text is not JSON, not an object,
/// lacks a required key or has a wrong type anywhere.
bool decodeObject(std::string text, const Shape& shape, void* target);

}  // namespace detail

/// The record that `text` holds as one JSON object; nothing when the text is not JSON, a required
/// key is missing or a value has the wrong type. Unknown keys are passed over, whatever they hold.
/// An integer may be written with a fraction or an exponent as long as its value is integral; a
/// boolean is never an integer. Of two equal keys the last one counts, as if the first were not
/// there.
template <Record T>
std::optional<T> decode(std::string&& text) {
  std::optional<T> record(std::in_place);
  if (!detail::decodeObject(std::move(text), shapeOf<T>, &*record)) record.reset();
  return record;
}

}  // namespace quillpost::json
