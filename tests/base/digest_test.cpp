#include "base/digest.h"

#include <gtest/gtest.h>

#include <string>

namespace quillpost {
namespace {

TEST(Digest, IsThatOfThePublishedExamples) {
  EXPECT_EQ(sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(sha256Hex(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Digest, DiffersForTextsAroundTheLengthOfABlock) {
  std::string last;
  for (const std::size_t length : {54u, 55u, 56u, 57u, 63u, 64u, 65u}) {
    const std::string digest = sha256Hex(std::string(length, '\0'));
    EXPECT_EQ(digest.size(), 64u);
    EXPECT_NE(digest, last) << length;
    last = digest;
  }
}

}  // namespace
}  // namespace quillpost
