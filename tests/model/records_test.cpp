// Every record that crosses the app's socket, held against its field table. What the tables say,
// key by key, is printed in docs/protocol.md.

#include "harness/golden.h"
#include "json/decoder.h"
#include "json/value.h"
#include "model/samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpost {

using json::Presence;
using json::Tree;
using json::TreeObject;
using samples::sample;
using Texts = std::vector<std::string>;

/// JSON that is no value of the type.
template <class Value>
struct WireType {
  static Texts wrong() {
    if constexpr (json::Record<Value>) return {"\"text\"", "1", "true", "[]", "[{}]"};
    return {"1", "true", "[]", "{}", "\"\"", "\"register\"", "\"Registered\"", "\"empty \""};
  }
};
template <>
struct WireType<std::string> {
  static Texts wrong() { return {"1", "3.5", "true", "[]", "[\"text\"]", "{}"}; }
};
template <>
struct WireType<int64_t> {
  static Texts wrong() {
    return {"\"1\"", "3.5", "1e19", "9223372036854775808", "true", "false", "[]", "[1]", "{}"};
  }
};
template <>
struct WireType<bool> {
  static Texts wrong() { return {"\"true\"", "0", "1", "[]", "[true]", "{}"}; }
};
template <class Value>
struct WireType<std::optional<Value>> : WireType<Value> {};
template <class Value>
struct WireType<std::vector<Value>> {
  /// A list too is wrong when one of its elements is.
  static Texts wrong() {
    Texts values = {"\"text\"", "1", "true", "{}", "[null]", "[[]]"};
    for (const std::string& element : WireType<Value>::wrong())
      values.push_back("[" + element + "]");
    return values;
  }
};

/// The name of the member behind a pointer.
template <auto Member>
constexpr std::string_view memberName() {
  std::string_view name = __PRETTY_FUNCTION__;
  name.remove_prefix(name.find("Member = &"));
  name = name.substr(0, name.find_first_of(";]"));
  return name.substr(name.rfind(':') + 1);
}

static_assert(memberName<&TeamworkTask::title>() == "title");

/// One row of a field table, whatever the types of its record and its member.
struct AnyField {
  std::string_view key;
  std::string_view member;
  Presence presence = Presence::required;
  /// JSON that is no value of its type.
  Texts wrong;
};

/// A record whatever its type, so that the tests below are compiled once and not once for each of
/// them: that took a minute.
struct AnyRecord {
  std::string_view name;
  std::vector<AnyField> fields;
  /// As JSON: with every member another one than by default, and as it is by default.
  TreeObject sample, defaults;
  /// The record that the JSON holds, as JSON again; nothing when it holds none.
  std::optional<TreeObject> (*read)(const TreeObject& members);
  /// The sample with the member of that row another one, as JSON; nothing when the two count as
  /// equal, or as another than itself.
  std::optional<TreeObject> (*varied)(std::size_t row);

  /// What `sample` has of the required keys.
  TreeObject required() const {
    TreeObject members = sample;
    for (const AnyField& field : fields)
      if (field.presence != Presence::required) members.erase(field.key);
    return members;
  }
  /// A record with the key as by default: without it, or with what the table says.
  TreeObject withDefault(TreeObject members, const AnyField& field) const {
    if (field.presence == Presence::optional) members.erase(field.key);
    if (field.presence == Presence::defaulted) members[field.key] = defaults.at(field.key);
    return members;
  }
  /// What comes of the required keys alone.
  TreeObject minimal() const {
    TreeObject members = sample;
    for (const AnyField& field : fields) members = withDefault(std::move(members), field);
    return members;
  }
};

/// How a failing test shows its parameter.
static void PrintTo(const AnyRecord& record, std::ostream* out) { *out << record.name; }

namespace {

using Kind = TeamworkResponse::Kind;

template <class T>
TreeObject membersOf(const T& record) {
  return json::parse(json::encode(record))->get_object();
}

template <class T>
std::optional<TreeObject> readAs(const TreeObject& members) {
  std::string text;
  json::appendTree(text, Tree(members));
  const std::optional<T> record = json::decode<T>(std::move(text));
  if (!record) return std::nullopt;
  return membersOf(*record);
}

template <class T>
std::optional<TreeObject> variedAt(std::size_t row) {
  constexpr int unused = 100000;
  const T whole = sample<T>();
  T other = whole;
  std::size_t at = 0;
  json::forEachField<T>([&](const auto& field) {
    int count = unused;
    if (at++ == row) samples::vary(other.*field.member, count);
  });
  if (other == whole || !(whole == T(whole))) return std::nullopt;
  return membersOf(other);
}

template <class T>
AnyRecord anyRecord() {
  AnyRecord record{.name = samples::nameOf<T>,
                   .fields = {},
                   .sample = membersOf(sample<T>()),
                   .defaults = membersOf(T{}),
                   .read = readAs<T>,
                   .varied = variedAt<T>};
  json::forEachField<T>([&]<class Value>(const json::Field<T, Value>& field) {
    record.fields.push_back({.key = field.key,
                             .member = {},
                             .presence = field.presence,
                             .wrong = WireType<Value>::wrong()});
  });
  static constexpr auto fields = T::fields();
  const auto nameMembers = [&]<std::size_t... I>(std::index_sequence<I...> /*rows*/) {
    ((record.fields[I].member = memberName<std::get<I>(fields).member>()), ...);
  };
  nameMembers(std::make_index_sequence<json::memberCount<T>()>());
  return record;
}

template <class... Records>
std::vector<AnyRecord> anyRecords(::testing::Types<Records...> /*records*/) {
  return {anyRecord<Records>()...};
}

class EveryRecord : public ::testing::TestWithParam<AnyRecord> {
 protected:
  const AnyRecord& record = GetParam();
  const TreeObject& whole = record.sample;
};

INSTANTIATE_TEST_SUITE_P(Records, EveryRecord,
                         ::testing::ValuesIn(anyRecords(samples::AllRecords())),
                         [](const auto& row) {
                           std::string name(row.param.name);
                           std::erase(name, '.');
                           return name;
                         });

TEST_P(EveryRecord, ComesBackWholeFromTheWire) {
  EXPECT_EQ(record.read(whole), whole);
  EXPECT_EQ(record.read(record.defaults), record.defaults);
}

TEST_P(EveryRecord, IsWrittenInTheOrderOfItsTable) {
  Texts written, listed;
  for (const auto& member : whole) written.emplace_back(member.key());
  for (const AnyField& field : record.fields) listed.emplace_back(field.key);
  EXPECT_EQ(written, listed);
}

TEST_P(EveryRecord, HasMembersNamedLikeTheirKeys) {
  for (const AnyField& field : record.fields)
    EXPECT_EQ(field.member == "isAuto" ? "auto" : field.member, field.key);
}

TEST_P(EveryRecord, NeedsOnlyItsRequiredKeys) {
  EXPECT_EQ(record.read(record.required()), record.minimal());
}

TEST_P(EveryRecord, TakesEachOtherKeyByItself) {
  for (const AnyField& field : record.fields) {
    TreeObject some = record.required(), expected = record.minimal();
    some[field.key] = expected[field.key] = whole.at(field.key);
    EXPECT_EQ(record.read(some), expected) << field.key;
  }
}

TEST_P(EveryRecord, FailsWithoutARequiredKey) {
  for (const AnyField& field : record.fields) {
    TreeObject members = whole;
    members.erase(field.key);
    EXPECT_EQ(record.read(members).has_value(), field.presence != Presence::required) << field.key;
  }
}

TEST_P(EveryRecord, CountsANullAsMissing) {
  for (const AnyField& field : record.fields) {
    TreeObject members = whole;
    members[field.key] = nullptr;
    std::optional<TreeObject> expected;
    if (field.presence != Presence::required) expected = record.withDefault(whole, field);
    EXPECT_EQ(record.read(members), expected) << field.key;
  }
}

TEST_P(EveryRecord, FailsWhenAKeyHasTheWrongType) {
  for (const AnyField& field : record.fields) {
    for (const std::string& wrong : field.wrong) {
      TreeObject members = whole;
      members[field.key] = *json::parse(wrong);
      EXPECT_EQ(record.read(members), std::nullopt) << field.key << " = " << wrong;
    }
  }
}

TEST_P(EveryRecord, IgnoresUnknownKeys) {
  const Tree unknown = *json::parse(R"([null,{"kind":1,"id":[{"":2.5}]},"text"])");
  TreeObject members;
  for (const auto& member : whole) {
    const std::string key(member.key());
    members["unknown " + key] = unknown;
    members[key] = member.value();
    members[key + "s "] = member.value();
  }
  EXPECT_EQ(record.read(members), whole);
}

TEST_P(EveryRecord, KnowsItsKeysOnlyAsTheyAreSpelled) {
  TreeObject members;
  for (const auto& member : whole) {
    std::string key(member.key());
    key.front() = static_cast<char>(key.front() - 'a' + 'A');
    members[key] = member.value();
  }
  std::optional<TreeObject> expected;
  if (record.required().empty()) expected = record.defaults;
  EXPECT_EQ(record.read(members), expected);
}

TEST_P(EveryRecord, IsEqualOnlyWhenEveryMemberIs) {
  for (std::size_t row = 0; row < record.fields.size(); ++row) {
    const std::optional<TreeObject> other = record.varied(row);
    ASSERT_TRUE(other) << record.fields[row].key;
    EXPECT_NE(other->at(record.fields[row].key), whole.at(record.fields[row].key));
  }
}

TEST(ResponseKind, IsOneOfElevenWords) {
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
