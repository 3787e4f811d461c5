#include "board/page/guard.h"

#include <gtest/gtest.h>

#include <string>

namespace quillpost::board {
namespace {

const Doorway doorway{"0123456789abcdef", 4711};

Knock reading() {
  Knock knock;
  knock.method = "GET";
  knock.host = "127.0.0.1:4711";
  knock.authorization = "Bearer 0123456789abcdef";
  return knock;
}

Knock writing() {
  Knock knock = reading();
  knock.method = "POST";
  knock.origin = "http://127.0.0.1:4711";
  knock.fetchSite = "same-origin";
  knock.contentType = "application/json";
  return knock;
}

int statusOf(const Knock& knock) {
  const auto refusal = refusalOf(knock, doorway);
  return refusal ? refusal->status : 200;
}

TEST(Guard, LetsThePageInThatHasTheKey) {
  EXPECT_EQ(statusOf(reading()), 200);
  EXPECT_EQ(statusOf(writing()), 200);
}

TEST(Guard, EveryRequestButThoseForFilesNeedsTheKeyOfThisRun) {
  for (const std::string_view given :
       {"", "Bearer ", "Bearer 0123456789abcdee", "Bearer 0123456789abcdef0", "0123456789abcdef",
        "bearer 0123456789abcdef", "Bearer  0123456789abcdef"}) {
    Knock knock = reading();
    knock.authorization = given;
    EXPECT_EQ(statusOf(knock), 401) << given;
    knock.isForFile = true;
    EXPECT_EQ(statusOf(knock), 200) << given;
    knock = writing();
    knock.authorization = given;
    EXPECT_EQ(statusOf(knock), 401) << given;
    knock.isForFile = true;
    EXPECT_EQ(statusOf(knock), 401) << "nothing is written to a file: " << given;
  }
}

TEST(Guard, AKeyIsComparedWholeAndAnEmptyOneOpensNothing) {
  EXPECT_TRUE(isSameSecret("abc", "abc"));
  for (const std::string_view given : {"", "ab", "abcd", "xbc", "axc", "abx"})
    EXPECT_FALSE(isSameSecret(given, "abc")) << given;
  EXPECT_FALSE(isSameSecret("", ""));
}

TEST(Guard, TheHostMustBeThisMachinesOwnNameAndThePort) {
  for (const std::string_view host : {"127.0.0.1:4711", "localhost:4711", "[::1]:4711"}) {
    Knock knock = reading();
    knock.host = host;
    EXPECT_EQ(statusOf(knock), 200) << host;
  }
  for (const std::string_view host :
       {"", "127.0.0.1", "127.0.0.1:4712", "evil.example:4711", "evil.example", "localhost",
        "127.0.0.1.evil.example:4711", "0.0.0.0:4711", "localhost:47110", "LOCALHOST:4711"}) {
    Knock knock = reading();
    knock.host = host;
    EXPECT_EQ(statusOf(knock), 421) << host;
    knock.isForFile = true;
    EXPECT_EQ(statusOf(knock), 421) << "files too: " << host;
  }
}

TEST(Guard, WhatChangesSomethingMustComeFromThePageItself) {
  for (const std::string_view origin :
       {"", "null", "http://127.0.0.1:4712", "https://127.0.0.1:4711", "http://localhost:4711",
        "http://evil.example", "http://127.0.0.1:4711.evil.example"}) {
    Knock knock = writing();
    knock.origin = origin;
    EXPECT_EQ(statusOf(knock), 403) << origin;
  }
  for (const std::string_view site : {"cross-site", "same-site", "none"}) {
    Knock knock = writing();
    knock.fetchSite = site;
    EXPECT_EQ(statusOf(knock), 403) << site;
  }
  Knock knock = writing();
  knock.fetchSite = "";
  EXPECT_EQ(statusOf(knock), 200) << "not every browser says so";
}

TEST(Guard, NoOtherPageReadsEither) {
  Knock knock = reading();
  knock.fetchSite = "cross-site";
  EXPECT_EQ(statusOf(knock), 403);
}

TEST(Guard, BodiesArePlainJson) {
  for (const std::string_view type :
       {"", "text/plain", "application/x-www-form-urlencoded", "multipart/form-data",
        "application/jsonp", "text/plain; application/json"}) {
    Knock knock = writing();
    knock.contentType = type;
    EXPECT_EQ(statusOf(knock), 415) << type;
  }
  Knock knock = writing();
  knock.contentType = "Application/JSON; charset=utf-8";
  EXPECT_EQ(statusOf(knock), 200);
  knock.isPacked = true;
  EXPECT_EQ(statusOf(knock), 415);
}

TEST(Guard, NoOtherMethodIsKnown) {
  for (const std::string_view method : {"PUT", "DELETE", "OPTIONS", "PATCH", "TRACE", ""}) {
    Knock knock = writing();
    knock.method = method;
    EXPECT_EQ(statusOf(knock), 405) << method;
  }
}

TEST(Guard, TheBrowserIsToldToLetNothingElseIn) {
  std::string policy;
  for (const Header& header : headersOfAll)
    if (std::string_view(header.name) == "Content-Security-Policy") policy = header.value;
  EXPECT_TRUE(policy.starts_with("default-src 'none';")) << policy;
  for (const std::string_view word : {"unsafe", "http:", "https:", "*", "data:", "blob:"})
    EXPECT_EQ(policy.find(word), std::string::npos) << word;
  EXPECT_NE(policy.find("frame-ancestors 'none'"), std::string::npos);
  for (const Header& header : headersOfAll)
    EXPECT_FALSE(std::string_view(header.name).starts_with("Access-Control")) << header.name;
}

}  // namespace
}  // namespace quillpost::board
