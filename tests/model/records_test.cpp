#include "harness/golden.h"
#include "json/decoder.h"
#include "json/value.h"
#include "model/samples.h"
#include "model/wire_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace quillpost {
namespace {

using json::Presence;
using json::Tree;
using json::TreeObject;
using samples::nameOf;
using samples::sample;
using Texts = std::vector<std::string>;

template <class T>
TreeObject membersOf(const T& record) {
  return json::parse(json::encode(record))->get_object();
}

template <class T>
std::optional<T> recordOf(const TreeObject& members) {
  std::string text;
  json::appendTree(text, Tree(members));
  return json::decode<T>(std::move(text));
}

std::string textOf(const Tree& tree) {
  std::string text;
  json::appendTree(text, tree);
  return text;
}

// --- The types of members ---------------------------------------------------------------------

template <class Value>
struct WireType {
  static std::string name() {
    if constexpr (json::Record<Value>) return std::string(nameOf<Value>);
    return "TeamworkResponse.Kind";
  }
  static Texts wrong() {
    if constexpr (json::Record<Value>) return {"\"text\"", "1", "true", "[]", "[{}]"};
    return {"1", "true", "[]", "{}", "\"\"", "\"register\"", "\"Registered\"", "\"empty \""};
  }
};
template <>
struct WireType<std::string> {
  static std::string name() { return "string"; }
  static Texts wrong() { return {"1", "3.5", "true", "[]", "[\"text\"]", "{}"}; }
};
template <>
struct WireType<int64_t> {
  static std::string name() { return "integer"; }
  static Texts wrong() {
    return {"\"1\"", "3.5", "1e19", "9223372036854775808", "true", "false", "[]", "[1]", "{}"};
  }
};
template <>
struct WireType<bool> {
  static std::string name() { return "boolean"; }
  static Texts wrong() { return {"\"true\"", "0", "1", "[]", "[true]", "{}"}; }
};
template <class Value>
struct WireType<std::optional<Value>> : WireType<Value> {};
template <class Value>
struct WireType<std::vector<Value>> {
  static std::string name() { return "[" + WireType<Value>::name() + "]"; }
  /// A list too is wrong when one of its elements is.
  static Texts wrong() {
    Texts values = {"\"text\"", "1", "true", "{}", "[null]", "[[]]"};
    for (const std::string& element : WireType<Value>::wrong())
      values.push_back("[" + element + "]");
    return values;
  }
};

template <class Owner, class Value>
WireType<Value> typeOf(const json::Field<Owner, Value>& /*field*/) {
  return {};
}

/// A field of a record whatever its type, so that the tests below are compiled once for each record
/// and not once for each field: that took minutes.
template <class T>
struct AnyField {
  std::string_view key;
  Presence presence;
  std::string typeName;
  /// JSON that is no value of its type.
  Texts wrong;
  bool (*equal)(const T& one, const T& other);
  void (*copy)(T& to, const T& from);
  /// Gives it another value.
  void (*vary)(T& record);
};

template <class T, std::size_t I>
AnyField<T> anyField() {
  static constexpr auto field = std::get<I>(T::fields());
  using Type = decltype(typeOf(field));
  return {.key = field.key,
          .presence = field.presence,
          .typeName = Type::name(),
          .wrong = Type::wrong(),
          .equal = [](const T& one,
                      const T& other) { return one.*field.member == other.*field.member; },
          .copy = [](T& to, const T& from) { to.*field.member = from.*field.member; },
          .vary =
              [](T& record) {
                int count = 100000;
                samples::vary(record.*field.member, count);
              }};
}

template <class T>
std::vector<AnyField<T>> fieldsOf() {
  std::vector<AnyField<T>> fields;
  const auto add = [&fields]<std::size_t... I>(std::index_sequence<I...> /*rows*/) {
    (fields.push_back(anyField<T, I>()), ...);
  };
  add(std::make_index_sequence<json::memberCount<T>()>());
  return fields;
}

/// The members without those that may be missing.
template <class T>
TreeObject requiredOf(TreeObject members) {
  for (const AnyField<T>& field : fieldsOf<T>())
    if (field.presence != Presence::required) members.erase(field.key);
  return members;
}

// --- Every record -----------------------------------------------------------------------------

struct RecordNames {
  template <class T>
  static std::string GetName(int /*index*/) {
    std::string name(nameOf<T>);
    std::erase(name, '.');
    return name;
  }
};

template <class T>
class EveryRecord : public ::testing::Test {};
TYPED_TEST_SUITE(EveryRecord, samples::AllRecords, RecordNames);

TYPED_TEST(EveryRecord, ComesBackWholeFromTheWire) {
  const TypeParam whole = sample<TypeParam>();
  EXPECT_EQ(json::decode<TypeParam>(json::encode(whole)), whole);
  EXPECT_EQ(json::decode<TypeParam>(json::encode(TypeParam{})), TypeParam{});
}

TYPED_TEST(EveryRecord, IsWrittenInTheOrderOfItsTable) {
  Texts written, listed;
  for (const auto& member : membersOf(sample<TypeParam>())) written.emplace_back(member.key());
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) listed.emplace_back(field.key);
  EXPECT_EQ(written, listed);
}

TYPED_TEST(EveryRecord, NeedsOnlyItsRequiredKeys) {
  const TypeParam whole = sample<TypeParam>();
  const std::optional<TypeParam> minimal =
      recordOf<TypeParam>(requiredOf<TypeParam>(membersOf(whole)));
  ASSERT_TRUE(minimal);
  const TypeParam defaults;
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) {
    const TypeParam& expected = field.presence == Presence::required ? whole : defaults;
    EXPECT_TRUE(field.equal(*minimal, expected)) << field.key;
  }
}

TYPED_TEST(EveryRecord, TakesEachOtherKeyByItself) {
  const TypeParam whole = sample<TypeParam>();
  const TreeObject members = membersOf(whole);
  const TreeObject required = requiredOf<TypeParam>(members);
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) {
    TreeObject some = required;
    some[field.key] = members.at(field.key);
    TypeParam expected = *recordOf<TypeParam>(required);
    field.copy(expected, whole);
    EXPECT_EQ(recordOf<TypeParam>(some), expected) << field.key;
  }
}

TYPED_TEST(EveryRecord, FailsWithoutARequiredKey) {
  const TypeParam whole = sample<TypeParam>();
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) {
    TreeObject members = membersOf(whole);
    members.erase(field.key);
    const bool isRead = recordOf<TypeParam>(members).has_value();
    EXPECT_EQ(isRead, field.presence != Presence::required) << field.key;
  }
}

TYPED_TEST(EveryRecord, CountsANullAsMissing) {
  const TypeParam whole = sample<TypeParam>();
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) {
    TreeObject members = membersOf(whole);
    members[field.key] = nullptr;
    std::optional<TypeParam> expected;
    if (field.presence != Presence::required) {
      expected = whole;
      field.copy(*expected, TypeParam{});
    }
    EXPECT_EQ(recordOf<TypeParam>(members), expected) << field.key;
  }
}

TYPED_TEST(EveryRecord, FailsWhenAKeyHasTheWrongType) {
  const TypeParam whole = sample<TypeParam>();
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) {
    for (const std::string& wrong : field.wrong) {
      TreeObject members = membersOf(whole);
      members[field.key] = *json::parse(wrong);
      EXPECT_EQ(recordOf<TypeParam>(members), std::nullopt) << field.key << " = " << wrong;
    }
  }
}

TYPED_TEST(EveryRecord, IgnoresUnknownKeys) {
  const TypeParam whole = sample<TypeParam>();
  const Tree unknown = *json::parse(R"([null,{"kind":1,"id":[{"":2.5}]},"text"])");
  TreeObject members;
  for (const auto& member : membersOf(whole)) {
    const std::string key(member.key());
    members["unknown " + key] = unknown;
    members[key] = member.value();
    members[key + "s "] = member.value();
  }
  EXPECT_EQ(recordOf<TypeParam>(members), whole);
}

TYPED_TEST(EveryRecord, KnowsItsKeysOnlyAsTheyAreSpelled) {
  TreeObject members;
  for (const auto& member : membersOf(sample<TypeParam>())) {
    std::string key(member.key());
    key.front() = static_cast<char>(key.front() - 'a' + 'A');
    members[key] = member.value();
  }
  const std::optional<TypeParam> read = recordOf<TypeParam>(members);
  if (requiredOf<TypeParam>(membersOf(TypeParam{})).empty()) {
    EXPECT_EQ(read, TypeParam{});
  } else {
    EXPECT_EQ(read, std::nullopt);
  }
}

TYPED_TEST(EveryRecord, IsEqualOnlyWhenEveryMemberIs) {
  const TypeParam whole = sample<TypeParam>();
  EXPECT_EQ(whole, TypeParam(whole));
  for (const AnyField<TypeParam>& field : fieldsOf<TypeParam>()) {
    TypeParam other = whole;
    field.vary(other);
    EXPECT_FALSE(other == whole) << field.key;
    EXPECT_NE(json::encode(other), json::encode(whole)) << field.key;
  }
}

// --- The tables against the wire --------------------------------------------------------------

/// The name of the member behind a pointer.
template <auto Member>
constexpr std::string_view memberName() {
  std::string_view name = __PRETTY_FUNCTION__;
  name.remove_prefix(name.find("Member = &"));
  name = name.substr(0, name.find_first_of(";]"));
  return name.substr(name.rfind(':') + 1);
}

static_assert(memberName<&TeamworkTask::title>() == "title");

template <class T, std::size_t... I>
void expectNamesLikeKeys(std::index_sequence<I...> /*rows*/) {
  constexpr auto fields = T::fields();
  const auto expectLike = [](std::string_view name, std::string_view key) {
    EXPECT_EQ(name == "isAuto" ? "auto" : name, key);
  };
  (expectLike(memberName<std::get<I>(fields).member>(), std::get<I>(fields).key), ...);
}

TYPED_TEST(EveryRecord, HasMembersNamedLikeTheirKeys) {
  expectNamesLikeKeys<TypeParam>(
      std::make_index_sequence<std::tuple_size_v<decltype(TypeParam::fields())>>());
}

/// A record's field table in the form of the wire table.
template <class T>
std::string tableOf() {
  const TreeObject defaults = membersOf(T{});
  std::string table = "\n" + std::string(nameOf<T>) + "\n";
  for (const AnyField<T>& field : fieldsOf<T>()) {
    table += std::string(field.key) + ": " + field.typeName + ", ";
    switch (field.presence) {
      case Presence::required:
        table += "required\n";
        break;
      case Presence::optional:
        table += "optional\n";
        break;
      case Presence::defaulted:
        table += "default " + textOf(defaults.at(field.key)) + "\n";
        break;
    }
  }
  return table;
}

template <class... Records>
std::string tablesOf(::testing::Types<Records...> /*records*/) {
  return (tableOf<Records>() + ...);
}

TEST(FieldTables, SayWhatTheWireSaysKeyByKey) {
  EXPECT_TRUE(testing::sameText(wireTable, tablesOf(samples::AllRecords())));
}

TEST(FieldTables, HaveAsManyKeysAsTheWire) {
  EXPECT_EQ(json::memberCount<TeamworkRequest>(), 39U);
  EXPECT_EQ(json::memberCount<TeamworkResponse>(), 20U);
  EXPECT_EQ(json::memberCount<TeamworkTask>(), 36U);
  EXPECT_EQ(json::memberCount<TeamworkAgent>(), 17U);
  EXPECT_EQ(json::memberCount<TeamworkDiscussion>(), 13U);
  EXPECT_EQ(json::memberCount<TeamworkPlan>(), 11U);
  EXPECT_EQ(json::memberCount<TeamworkChangeFeed>(), 10U);
}

TEST(ResponseKind, IsOneOfElevenWords) {
  using Kind = TeamworkResponse::Kind;
  struct Row {
    Kind kind;
    std::string_view word;
  };
  constexpr Row rows[] = {
      {Kind::registered, "registered"},
      {Kind::agents, "agents"},
      {Kind::tasks, "tasks"},
      {Kind::task, "task"},
      {Kind::plan, "plan"},
      {Kind::changes, "changes"},
      {Kind::discussion, "discussion"},
      {Kind::wake, "wake"},
      {Kind::written, "written"},
      {Kind::empty, "empty"},
      {Kind::error, "error"},
  };
  EXPECT_EQ(json::Names<Kind>::rows.size(), std::size(rows));
  for (const Row& row : rows) {
    EXPECT_EQ(json::wordFor(row.kind), row.word);
    EXPECT_EQ(json::fromWord<Kind>(row.word), row.kind);
  }
  for (const std::string_view word : {"", "register", "Registered", "tasks ", "none", "wakes"})
    EXPECT_EQ(json::fromWord<Kind>(word), std::nullopt) << word;
}

}  // namespace
}  // namespace quillpost
