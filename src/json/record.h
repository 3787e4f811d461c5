#pragma once

// Records and their field tables. A record is a plain struct whose members have the names of its
// JSON keys, followed by one row per member:
//
//   struct Lead {
//     std::string name;
//     std::optional<std::string> nick;
//     int64_t age = 0;
//     static constexpr auto fields() {
//       return std::tuple{required("name", &Lead::name), optional("nick", &Lead::nick),
//                         defaulted("age", &Lead::age)};
//     }
//   };
//
// What a row says holds in both directions: the decoder (json/decoder.h) and the encoder below
// read the same table. A record whose table misses a member does not compile.

#include "json/names.h"
#include "json/writer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillpost::json {

/// What a missing key means: `required` fails the decoding, `optional` leaves the member without a
/// value, `defaulted` leaves the member's own initialiser. A null counts as missing.
enum class Presence { required, optional, defaulted };

/// One row of a field table.
template <class Owner, class Value>
struct Field {
  std::string_view key;
  Value Owner::*member;
  Presence presence;
};

/// A key that must be there.
template <class Owner, class Value>
constexpr Field<Owner, Value> required(std::string_view key, Value Owner::*member) {
  return {key, member, Presence::required};
}

/// A key that may be missing, and is left out of what is written when the member has no value.
template <class Owner, class Value>
constexpr Field<Owner, std::optional<Value>> optional(std::string_view key,
                                                      std::optional<Value> Owner::*member) {
  return {key, member, Presence::optional};
}

/// A key that may be missing, and is always written.
template <class Owner, class Value>
constexpr Field<Owner, Value> defaulted(std::string_view key, Value Owner::*member) {
  return {key, member, Presence::defaulted};
}

namespace detail {

/// Stands for a member of any type while members are counted; never converted at run time. It has
/// a body only for records of a single source file, whose types no other file could define it for.
struct AnyMember {
  template <class T>
  operator T() const {  // NOLINT(google-explicit-constructor)
    return T();
  }
};

template <class T, class... Members>
concept InitialisedBy = requires {
  T{std::declval<Members>()...};
};

}  // namespace detail

/// How many members an aggregate has, found by trying ever longer initialiser lists.
template <class T, class... Members>
consteval std::size_t memberCount() {
  if constexpr (detail::InitialisedBy<T, Members..., detail::AnyMember>) {
    return memberCount<T, Members..., detail::AnyMember>();
  } else {
    return sizeof...(Members);
  }
}

/// A struct with a field table.
template <class T>
concept HasFields = requires {
  T::fields();
};

/// A struct with a row for each of its members.
template <class T>
concept Record = HasFields<T> && std::tuple_size_v<decltype(T::fields())>
== memberCount<T>();

/// Calls `visit(field)` for each row, in order.
template <HasFields T, class Visit>
constexpr void forEachField(Visit&& visit) {
  std::apply([&](const auto&... field) { (visit(field), ...); }, T::fields());
}

/// Whether a defaulted member is written when it has the value that its missing key would mean.
enum class Unsaid { written, omitted };

/// Declared ahead because records nest: a member may be a record itself.
template <Unsaid unsaid = Unsaid::written, Record T>
void encodeMembers(Object& out, const T& record);

namespace detail {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

template <class T>
inline constexpr bool isRecordList = false;
template <Record T>
inline constexpr bool isRecordList<std::vector<T>> = true;

/// The record whose members all have their own initialisers.
template <Record T>
const T& blank() {
  static const T record = {};
  return record;
}

template <Unsaid unsaid, class Value>
void encodeMember(Object& out, std::string_view key, const Value& value) {
  if constexpr (isOptional<Value>) {
    if (value) encodeMember<unsaid>(out, key, *value);
  } else if constexpr (Record<Value>) {
    Object child = out.object(key);
    encodeMembers<unsaid>(child, value);
  } else if constexpr (isRecordList<Value>) {
    Array list = out.array(key);
    for (const auto& record : value) {
      Object child = list.object();
      encodeMembers<unsaid>(child, record);
    }
  } else if constexpr (Named<Value>) {
    out.add(key, wordFor(value));
  } else {
    out.add(key, value);
  }
}

}  // namespace detail

/// Adds the record's members to an object, in the table's order; members without a value are left
/// out. Every text of the record must be UTF-8.
template <Unsaid unsaid, Record T>
void encodeMembers(Object& out, const T& record) {
  forEachField<T>([&](const auto& field) {
    if constexpr (unsaid == Unsaid::omitted) {
      const bool isDefaulted = field.presence == Presence::defaulted;
      if (isDefaulted && record.*field.member == detail::blank<T>().*field.member) return;
    }
    detail::encodeMember<unsaid>(out, field.key, record.*field.member);
  });
}

/// The record as compact JSON text.
template <Unsaid unsaid = Unsaid::written, Record T>
std::string encode(const T& record) {
  std::string text;
  {
    Object object(text);
    encodeMembers<unsaid>(object, record);
  }
  return text;
}

}  // namespace quillpost::json
