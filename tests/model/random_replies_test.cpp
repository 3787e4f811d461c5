#include "json/decoder.h"
#include "json/value.h"
#include "model/coding.h"
#include "model/samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

// Replies that no app would send, from a fixed seed: whatever comes, the decoder gives a record or
// nothing, and a record that it gives can be written and read again.

namespace quillpost {
namespace {

/// Random numbers that are the same on every machine.
class Dice {
 public:
  explicit Dice(uint64_t seed) : random_(seed) {}

  /// From 0 to `sides` - 1.
  std::size_t roll(std::size_t sides) { return static_cast<std::size_t>(random_() % sides); }
  char byte() { return static_cast<char>(roll(256)); }

 private:
  std::mt19937_64 random_;
};

constexpr std::array<std::string_view, 30> fragments = {"{",           "}",
                                                        "[",           "]",
                                                        ":",           ",",
                                                        "\"",          "\\",
                                                        "null",        "true",
                                                        "false",       "0",
                                                        "-1",          "3.0",
                                                        "1e400",       "1e19",
                                                        "\"a\"",       "\\n",
                                                        "\\u00e9",     "\\ud83d",
                                                        "\\ude00",     "\"kind\"",
                                                        "\"rev\":",    "\"x\":{},",
                                                        "\"empty\"",   "\"task\":null,",
                                                        "\"rev\":[],", "\"message\":",
                                                        "\xc3",        "😀"};

/// Changes one place of the text.
void mutate(std::string& text, Dice& dice) {
  const std::size_t at = dice.roll(text.size() + 1);
  const std::size_t length = dice.roll(9);
  switch (dice.roll(7)) {
    case 0:
      if (at < text.size()) text[at] = dice.byte();
      break;
    case 1:
      text.insert(at, 1, dice.byte());
      break;
    case 2:
      text.insert(at, fragments[dice.roll(fragments.size())]);
      break;
    case 3:
      text.replace(at, length, fragments[dice.roll(fragments.size())]);
      break;
    case 4:
      text.erase(at, length);
      break;
    case 5:
      text.insert(dice.roll(text.size() + 1), text.substr(at, dice.roll(200)));
      break;
    default:
      // A digit becomes another, which leaves the text valid more often than not.
      if (const std::size_t digit = text.find_first_of("0123456789", at);
          digit != std::string::npos)
        text[digit] = static_cast<char>('0' + dice.roll(10));
  }
}

/// The text as a tree has it, which keeps the last of two equal keys and writes every number its
/// own way; empty for a text that is not JSON.
std::string respelled(std::string_view text) {
  std::string out;
  if (const std::optional<json::Tree> tree = json::parse(text)) json::appendTree(out, *tree);
  return out;
}

/// Whether the text decoded, after holding the record that it gave to its promise.
bool decodesSoundly(std::string_view text) {
  const std::optional<TeamworkResponse> response = decodeResponse(std::string(text));
  EXPECT_EQ(decodeResponse(respelled(text)), response) << text;
  if (!response) return false;
  const std::optional<std::string> again = encodeResponse(*response);
  EXPECT_TRUE(again) << "a reply that was read can be written";
  EXPECT_EQ(decodeResponse(again.value_or("")), response) << text;
  return true;
}

/// A reply with about every fourth member.
TeamworkResponse partOf(const TeamworkResponse& whole, Dice& dice) {
  TeamworkResponse part;
  json::forEachField<TeamworkResponse>([&](const auto& field) {
    if (dice.roll(4) == 0) part.*field.member = whole.*field.member;
  });
  return part;
}

TEST(RandomReplies, OfBytesAreNothing) {
  Dice dice(1);
  for (int round = 0; round < 20000; ++round) {
    std::string text(dice.roll(64), '\0');
    for (char& byte : text) byte = dice.byte();
    EXPECT_FALSE(decodesSoundly(text));
    EXPECT_FALSE(decodesSoundly("{" + text));
  }
}

TEST(RandomReplies, OfFragmentsNeverDisturbTheDecoder) {
  Dice dice(2);
  int decoded = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string text = R"({"kind":"empty")";
    for (std::size_t count = dice.roll(6); count > 0; --count)
      text += fragments[dice.roll(fragments.size())];
    decoded += decodesSoundly(text) ? 1 : 0;
    decoded += decodesSoundly(text + "}") ? 1 : 0;
  }
  EXPECT_GT(decoded, 1000) << "the fragments must make a reply now and then";
}

TEST(RandomReplies, ThatWereValidOnceNeverDisturbTheDecoder) {
  Dice dice(3);
  const TeamworkResponse whole = samples::sample<TeamworkResponse>();
  int decoded = 0, refused = 0;
  for (int round = 0; round < 1000; ++round) {
    const std::optional<std::string> valid = encodeResponse(partOf(whole, dice));
    ASSERT_TRUE(valid);
    ASSERT_TRUE(decodesSoundly(*valid));
    std::string text = *valid;
    for (std::size_t count = 1 + dice.roll(3); count > 0; --count) mutate(text, dice);
    (decodesSoundly(text) ? decoded : refused) += 1;
  }
  EXPECT_GT(decoded, 100);
  EXPECT_GT(refused, 100);
}

TEST(RandomReplies, CutAnywhereAreNothing) {
  const std::optional<std::string> valid = encodeResponse(samples::sample<TeamworkResponse>());
  ASSERT_TRUE(valid);
  EXPECT_TRUE(decodesSoundly(*valid));
  for (std::size_t size = 0; size < valid->size(); size += 1 + size / 100)
    EXPECT_FALSE(decodesSoundly(std::string_view(*valid).substr(0, size))) << size;
}

}  // namespace
}  // namespace quillpost
