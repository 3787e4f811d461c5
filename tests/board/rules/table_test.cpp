#include "board/rules/table.h"

#include "board/rules/seat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillpost::board {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Seat seat(std::string id, std::string mark, int64_t leaseUntilMs = 1) {
  Seat made;
  made.id = std::move(id);
  made.registered = true;
  made.fingerprint = std::move(mark);
  made.leaseUntilMs = leaseUntilMs;
  return made;
}

std::vector<std::string> idsOf(const std::vector<const Seat*>& rows) {
  std::vector<std::string> ids;
  for (const Seat* row : rows) ids.push_back(row->id);
  return ids;
}

std::vector<std::string> unsaved(const Table<Seat>& table) {
  std::vector<std::string> ids;
  table.forEachUnsaved([&](const std::string& id, const Seat* row) {
    ids.push_back(row == nullptr ? "-" + id : id);
  });
  return ids;
}

TEST(Table, WhatIsUnsavedIsWhatDiffers) {
  Table<Seat> table;
  for (const char* id : {"a", "b", "c", "d"}) table.put(seat(id, id));
  EXPECT_THAT(unsaved(table), ElementsAre("a", "b", "c", "d"));
  table.settle();
  EXPECT_TRUE(table.isSaved());
  table.touch("a");
  table.touch("b")->name = "Ann";
  table.touch("b")->name = "";
  table.touch("c")->name = "Cleo";
  table.remove("d");
  table.put(seat("e", "e"));
  table.remove("e");
  table.put(seat("f", "f"));
  EXPECT_THAT(unsaved(table), ElementsAre("c", "-d", "f"));
}

TEST(Table, RevertingPutsEverythingBack) {
  Table<Seat> table;
  for (const char* id : {"a", "b", "c"}) table.put(seat(id, id));
  table.settle();
  table.touch("a")->fingerprint = "x";
  table.remove("b");
  table.put(seat("d", "d"));
  table.revert();
  EXPECT_TRUE(table.isSaved());
  EXPECT_EQ(table.size(), 3u);
  EXPECT_EQ(table.find("a")->fingerprint, "a");
  EXPECT_THAT(idsOf(table.with({byMark, "b"})), ElementsAre("b"));
  EXPECT_THAT(idsOf(table.with({byMark, "x"})), IsEmpty());
}

TEST(Table, RowsAreFoundByTheirKeysWhetherSavedOrNot) {
  Table<Seat> table;
  for (const char* id : {"d", "b"}) table.put(seat(id, "same"));
  table.settle();
  table.put(seat("c", "same"));
  table.put(seat("a", "other"));
  EXPECT_THAT(idsOf(table.with({byMark, "same"})), ElementsAre("b", "c", "d"));
  table.touch("b")->fingerprint = "other";
  table.remove("d");
  EXPECT_THAT(idsOf(table.with({byMark, "same"})), ElementsAre("c"));
  EXPECT_THAT(idsOf(table.with({byMark, "other"})), ElementsAre("a", "b"));
  EXPECT_TRUE(table.has({byMark, "same"}));
  table.remove("c");
  EXPECT_FALSE(table.has({byMark, "same"}));
  table.settle();
  EXPECT_THAT(idsOf(table.with({byMark, "other"})), ElementsAre("a", "b"));
  EXPECT_FALSE(table.has({byMark, "same"}));
}

TEST(Table, WhatIsDueIsFoundInTime) {
  Table<Seat> table;
  table.put(seat("a", "a", 30));
  table.put(seat("b", "b", 10));
  table.settle();
  table.put(seat("c", "c", 20));
  EXPECT_EQ(table.firstWord(bySeatDueTime), padded(10));
  EXPECT_THAT(idsOf(table.upTo(bySeatDueTime, padded(20))), ElementsAre("b", "c"));
  table.touch("b")->leaseUntilMs = 40;
  EXPECT_EQ(table.firstWord(bySeatDueTime), padded(20));
  EXPECT_THAT(idsOf(table.upTo(bySeatDueTime, padded(20))), ElementsAre("c"));
  for (const char* id : {"a", "b", "c"}) table.remove(id);
  EXPECT_EQ(table.firstWord(bySeatDueTime), std::nullopt);
}

TEST(Table, WhatIsForgottenStaysSaved) {
  Table<Seat> table;
  for (const char* id : {"a", "b", "c"}) table.put(seat(id, id));
  table.settle();
  table.forgetAllBut(2);
  EXPECT_TRUE(table.isSaved());
  EXPECT_EQ(table.find("a"), nullptr);
  EXPECT_NE(table.find("b"), nullptr);
}

TEST(Table, IdsThatBeginAlikeStandTogether) {
  Table<Seat> table;
  for (const char* id : {"t1/1", "t1/2", "t10/1", "t2/1"}) table.put(seat(id, id));
  EXPECT_THAT(idsOf(table.under("t1/")), ElementsAre("t1/1", "t1/2"));
}

}  // namespace
}  // namespace quillpost::board
