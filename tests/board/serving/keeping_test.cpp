#include "board/serving/keeping.h"

#include "board/desk.h"
#include "board/verbs/person.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillpost::board {
namespace {

TeamworkResponse asked(Store& store, std::string_view method, const std::string& path) {
  TeamworkRequest request;
  request.method = method;
  request.body = path;
  return keepFile(store, request);
}

TEST(Keeping, CarriesOutWhatIsAskedOrSaysWhyNot) {
  const testing::TempDir dir;
  std::string why;
  Store store = *Store::open(dir.pathOf("board.db"), why);
  Desk desk;
  desk.add("one");
  ASSERT_TRUE(store.save(desk.board));
  EXPECT_TRUE(wasWritten(asked(store, personCheck, "")));
  EXPECT_TRUE(wasWritten(asked(store, personExport, dir.pathOf("lines"))));
  EXPECT_TRUE(wasRefused(asked(store, personExport, dir.pathOf("lines")), "cannot write"));
  EXPECT_TRUE(wasRefused(asked(store, personExport, dir.pathOf("no/such/folder")), "cannot write"));
  EXPECT_TRUE(wasWritten(asked(store, personBackup, dir.pathOf("copy"))));
  EXPECT_TRUE(wasRefused(asked(store, personImport, dir.pathOf("lines")), "already"));
  Store fresh = *Store::open(dir.pathOf("fresh.db"), why);
  EXPECT_TRUE(wasRefused(asked(fresh, personImport, dir.pathOf("none")), "cannot read"));
  EXPECT_TRUE(wasWritten(asked(fresh, personImport, dir.pathOf("lines"))));
  EXPECT_EQ(fresh.load(why)->boards.size(), 1u);
}

TEST(Keeping, WhatIsWrittenIsForThisUserAlone) {
  const testing::TempDir dir;
  std::string why;
  Store store = *Store::open(dir.pathOf("board.db"), why);
  asked(store, personExport, dir.pathOf("lines"));
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(dir.pathOf("lines")).permissions(),
            perms::owner_read | perms::owner_write);
}

TEST(Keeping, KnowsItsMethods) {
  for (const std::string_view method : {personExport, personImport, personBackup, personCheck})
    EXPECT_TRUE(isFileKeeping(method)) << method;
  EXPECT_FALSE(isFileKeeping(personShow));
}

}  // namespace
}  // namespace quillpost::board
