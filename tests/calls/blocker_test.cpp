#include "calls/blocker.h"

#include "base/text.h"
#include "harness/json_object.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::objectFrom;

std::string times(std::size_t count, std::string_view piece) {
  std::string out;
  for (std::size_t i = 0; i < count; ++i) out += piece;
  return out;
}

BlockerQuestion compose(const std::string& arguments) {
  const json::TreeObject object = objectFrom(arguments);
  return composeBlockerQuestion(Arguments(object));
}

/// A case: what update_task was given besides `blocked`, and the text that is sent.
struct BlockerRow {
  std::string_view name;
  std::string arguments;
  std::optional<std::string> text;
};

void checkBlockers(std::initializer_list<BlockerRow> rows) {
  for (const BlockerRow& row : rows) {
    const BlockerQuestion question = compose(row.arguments);
    EXPECT_EQ(question.text, row.text) << row.name;
    EXPECT_EQ(question.refusedLength, std::nullopt) << row.name;
  }
}

TEST(BlockerQuestion, ComesFromTheFirstSourceThatHasText) {
  // clang-format off
  checkBlockers({
      {"none", R"({})", std::nullopt},
      {"its own", R"({"blockerQuestion":"Q?","progress":"P","summary":"S"})", "Q?"},
      {"the progress line", R"({"progress":"P","summary":"S"})", "P"},
      {"the summary", R"({"summary":"S"})", "S"},
      {"an empty one falls through", R"({"blockerQuestion":"","progress":"P"})", "P"},
      {"a blank one falls through", R"({"blockerQuestion":" \n\u00a0\u2028","progress":"P"})", "P"},
      {"a marker without a text behind it is a text",
       R"({"blockerQuestion":"[[gist]] [[gist]] ","progress":"P"})", "[[gist]]"},
      {"an empty progress line falls through", R"({"progress":" ","summary":"S"})", "S"},
      {"no text anywhere", R"({"blockerQuestion":"","progress":" ","summary":"\n"})", std::nullopt},
      {"one of another kind", R"({"blockerQuestion":7,"progress":["P"],"summary":"S"})", "S"},
      {"one of another kind, and nothing else", R"({"blockerQuestion":true})", std::nullopt},
  });
  // clang-format on
}

TEST(BlockerQuestion, IsCleanedWhereverItComesFrom) {
  // clang-format off
  checkBlockers({
      {"white space at its ends", R"({"blockerQuestion":" \t\r\n May I?\u2003\u0085"})", "May I?"},
      {"a gist marker", R"({"blockerQuestion":"[[gist]] May I?"})", "May I?"},
      {"several", R"({"blockerQuestion":" [[gist]]  [[gist]]   May I? "})", "May I?"},
      {"in a progress line", R"({"progress":" [[gist]] done "})", "done"},
      {"in a summary", R"({"summary":"[[gist]] [[gist]] done"})", "done"},
      {"a marker without its blank stays", R"({"blockerQuestion":"[[gist]]May I?"})",
       "[[gist]]May I?"},
      {"a marker further on stays", R"({"blockerQuestion":"May [[gist]] I?"})", "May [[gist]] I?"},
      {"a hand-off marker stays", R"({"progress":"[[for]] KQ3"})", "[[for]] KQ3"},
      {"white space inside stays", R"({"blockerQuestion":"a \n b"})", "a \n b"},
  });
  // clang-format on
}

/// One user-perceived character in several code points each.
struct Character {
  std::string_view name, bytes;
};
constexpr Character characters[] = {
    {"a letter", "a"},
    {"a letter of two bytes", "é"},
    {"a letter and its accent", "e\xcc\x81"},
    {"an emoji", "😀"},
    {"a family", "👨‍👩‍👧‍👦"},
    {"a flag", "🇨🇭"},
    {"a skin tone", "👍🏽"},
    {"a Hangul syllable in pieces", "\xe1\x84\x92\xe1\x85\xa1\xe1\x86\xab"},
    {"a keycap", "1\xef\xb8\x8f\xe2\x83\xa3"},
};

TEST(BlockerQuestion, OfItsOwnHasAtMostTheLimitOfCharacters) {
  for (const Character& character : characters) {
    const std::string full = times(blockerQuestionLimit, character.bytes);
    const BlockerQuestion kept = compose(text::cat(R"({"blockerQuestion":")", full, "\"}"));
    EXPECT_EQ(kept.text, full) << character.name;
    EXPECT_EQ(kept.refusedLength, std::nullopt) << character.name;

    const BlockerQuestion refused =
        compose(text::cat(R"({"blockerQuestion":")", full, character.bytes, "\"}"));
    EXPECT_EQ(refused.text, std::nullopt) << character.name;
    EXPECT_EQ(refused.refusedLength, 141) << character.name;
  }
}

TEST(BlockerQuestion, FromElsewhereIsCutToTheLimit) {
  for (const std::string_view source : {"progress", "summary"}) {
    for (const Character& character : characters) {
      const std::string full = times(blockerQuestionLimit, character.bytes);
      for (const std::size_t more : {0u, 1u, 160u}) {
        const BlockerQuestion question =
            compose(text::cat("{\"", source, "\":\"", full, times(more, character.bytes), "\"}"));
        EXPECT_EQ(question.text, full) << source << " of " << character.name << " + " << more;
        EXPECT_EQ(question.refusedLength, std::nullopt) << source << " of " << character.name;
      }
    }
  }
}

TEST(BlockerQuestion, IsCountedAfterItIsCleaned) {
  const std::string full = times(blockerQuestionLimit, "x");
  checkBlockers(
      {{"white space and markers", R"({"blockerQuestion":"  [[gist]] )" + full + "\\n \"}", full}});
  const BlockerQuestion refused = compose(R"({"blockerQuestion":" )" + times(300, "x") + " \"}");
  EXPECT_EQ(refused.refusedLength, 300);
}

TEST(BlockerQuestion, CountsALineBreakOfTwoBytesAsOneCharacter) {
  const std::string start = times(138, "x");
  checkBlockers(
      {{"140 with one inside", R"({"blockerQuestion":")" + start + "\\r\\ny\"}", start + "\r\ny"}});
  EXPECT_EQ(compose(R"({"blockerQuestion":")" + start + "\\r\\nyz\"}").refusedLength, 141);
  EXPECT_EQ(compose(R"({"progress":")" + times(139, "x") + "\\r\\nyz\"}").text,
            times(139, "x") + "\r\n");
}

TEST(BlockerQuestion, IsTypedAsSoonAsAnythingMoreIsGiven) {
  // clang-format off
  checkBlockers({
      {"a kind", R"({"blockerQuestion":"Q?","blockerKind":"approval"})",
       R"([[ask:{"k":"approval"}]] Q?)"},
      {"options", R"({"blockerQuestion":"Q?","blockerOptions":["a","b"]})",
       R"([[ask:{"k":"decision","o":["a","b"]}]] Q?)"},
      {"a secret", R"({"blockerQuestion":"Q?","blockerSecretName":"API_KEY"})",
       R"([[ask:{"k":"secret","s":"API_KEY"}]] Q?)"},
      {"an artifact", R"({"blockerQuestion":"Q?","blockerArtifact":"src/a/b.c"})",
       R"([[ask:{"a":"src/a/b.c","k":"review"}]] Q?)"},
      {"a consequence", R"({"blockerQuestion":"Q?","blockerConsequence":"no ship"})",
       R"([[ask:{"c":"no ship","k":"respond"}]] Q?)"},
      {"everything",
       R"({"blockerQuestion":"Q?","blockerKind":"review","blockerOptions":["a"],)"
       R"("blockerSecretName":"S","blockerArtifact":"A","blockerConsequence":"C"})",
       R"([[ask:{"a":"A","c":"C","k":"review","o":["a"],"s":"S"}]] Q?)"},
      {"no options in the list", R"({"blockerQuestion":"Q?","blockerOptions":[]})", "Q?"},
      {"no text in the list", R"({"blockerQuestion":"Q?","blockerOptions":[1,null]})", "Q?"},
      {"only the texts of the list", R"({"blockerQuestion":"Q?","blockerOptions":[1,"a",["b"]]})",
       R"([[ask:{"k":"decision","o":["a"]}]] Q?)"},
      {"all of another kind",
       R"({"blockerQuestion":"Q?","blockerKind":1,"blockerOptions":"a","blockerSecretName":["S"],)"
       R"("blockerArtifact":null,"blockerConsequence":true})", "Q?"},
      {"without a question", R"({"blockerKind":"secret","blockerSecretName":"API_KEY"})",
       R"([[ask:{"k":"secret","s":"API_KEY"}]] )"},
      {"with the progress line", R"({"blockerSecretName":"API_KEY","progress":" P "})",
       R"([[ask:{"k":"secret","s":"API_KEY"}]] P)"},
      {"empty texts count as given",
       R"({"blockerQuestion":"Q?","blockerSecretName":"","blockerArtifact":"",)"
       R"("blockerConsequence":""})",
       R"([[ask:{"a":"","c":"","k":"secret","s":""}]] Q?)"},
      {"texts are kept as they are", R"({"blockerQuestion":"Q?","blockerArtifact":" é/\"\n"})",
       "[[ask:{\"a\":\" é/\\\"\\n\",\"k\":\"review\"}]] Q?"},
  });
  // clang-format on
}

TEST(BlockerKind, IsTheOneNamedWhateverItsCase) {
  for (const std::string_view kind : {"decision", "approval", "secret", "review", "respond"}) {
    const std::string expected = text::cat(R"([[ask:{"k":")", kind, R"(","s":"S"}]] Q?)");
    std::string upper(kind);
    for (char& letter : upper) letter = static_cast<char>(letter - 'a' + 'A');
    std::string mixed(kind);
    mixed.front() = upper.front();
    for (const std::string& spelling : {std::string(kind), upper, mixed}) {
      EXPECT_EQ(compose(text::cat(R"({"blockerQuestion":"Q?","blockerSecretName":"S",)",
                                  R"("blockerKind":")", spelling, "\"}"))
                    .text,
                expected)
          << spelling;
    }
  }
}

TEST(BlockerKind, IsInferredInOrderWhenNoneIsNamed) {
  // clang-format off
  checkBlockers({
      {"a secret goes first",
       R"({"blockerQuestion":"Q?","blockerSecretName":"S","blockerOptions":["a"],)"
       R"("blockerArtifact":"A","blockerConsequence":"C"})",
       R"([[ask:{"a":"A","c":"C","k":"secret","o":["a"],"s":"S"}]] Q?)"},
      {"then options", R"({"blockerQuestion":"Q?","blockerOptions":["a"],"blockerArtifact":"A"})",
       R"([[ask:{"a":"A","k":"decision","o":["a"]}]] Q?)"},
      {"then an artifact",
       R"({"blockerQuestion":"Q?","blockerArtifact":"A","blockerConsequence":"C"})",
       R"([[ask:{"a":"A","c":"C","k":"review"}]] Q?)"},
      {"an unknown kind is none", R"({"blockerQuestion":"Q?","blockerKind":"urgent"})",
       R"([[ask:{"k":"respond"}]] Q?)"},
      {"an unknown kind beside options",
       R"({"blockerQuestion":"Q?","blockerKind":"urgent","blockerOptions":["a"]})",
       R"([[ask:{"k":"decision","o":["a"]}]] Q?)"},
      {"an unknown kind beside an artifact",
       R"({"blockerQuestion":"Q?","blockerKind":"reviews","blockerArtifact":"A"})",
       R"([[ask:{"a":"A","k":"review"}]] Q?)"},
      {"an empty kind", R"({"blockerQuestion":"Q?","blockerKind":""})",
       R"([[ask:{"k":"respond"}]] Q?)"},
      {"a kind with blanks", R"({"blockerQuestion":"Q?","blockerKind":" secret"})",
       R"([[ask:{"k":"respond"}]] Q?)"},
      {"a kind of another kind of value",
       R"({"blockerQuestion":"Q?","blockerKind":7,"blockerConsequence":"C"})",
       R"([[ask:{"c":"C","k":"respond"}]] Q?)"},
  });
  // clang-format on
}

TEST(BlockerQuestion, IsTypedByATextThatIsEmptyButNotByAListThatIs) {
  // clang-format off
  checkBlockers({
      {"an empty secret name", R"({"blockerQuestion":"Q?","blockerSecretName":""})",
       R"([[ask:{"k":"secret","s":""}]] Q?)"},
      {"an empty artifact", R"({"blockerQuestion":"Q?","blockerArtifact":""})",
       R"([[ask:{"a":"","k":"review"}]] Q?)"},
      {"an empty consequence", R"({"blockerQuestion":"Q?","blockerConsequence":""})",
       R"([[ask:{"c":"","k":"respond"}]] Q?)"},
      {"an empty option", R"({"blockerQuestion":"Q?","blockerOptions":[""]})",
       R"([[ask:{"k":"decision","o":[""]}]] Q?)"},
      {"no options", R"({"blockerQuestion":"Q?","blockerOptions":[]})", "Q?"},
  });
  // clang-format on
}

TEST(BlockerQuestion, StandsAloneWhenItsMarkerWouldNotBeUtf8) {
  json::TreeObject arguments = objectFrom(R"({"blockerQuestion":"Q?"})");
  arguments["blockerSecretName"] = "\xff";
  EXPECT_EQ(composeBlockerQuestion(Arguments(arguments)).text, "Q?");
}

TEST(BlockerQuestion, KeepsFourOptionsAndCutsLongTexts) {
  const std::string eighty = times(80, "😀");
  const std::string twoHundred = times(200, "e\xcc\x81");
  checkBlockers({
      {"five options", R"({"blockerQuestion":"Q?","blockerOptions":["1","2","3","4","5"]})",
       R"([[ask:{"k":"decision","o":["1","2","3","4"]}]] Q?)"},
      {"a long option",
       R"({"blockerQuestion":"Q?","blockerOptions":[")" + eighty + "😀\",\"" + eighty + "\"]}",
       R"([[ask:{"k":"decision","o":[")" + eighty + "\",\"" + eighty + "\"]}]] Q?"},
      {"a long consequence",
       R"({"blockerQuestion":"Q?","blockerConsequence":")" + twoHundred + "e\"}",
       R"([[ask:{"c":")" + twoHundred + R"(","k":"respond"}]] Q?)"},
      {"a long artifact and a long secret name",
       R"({"blockerQuestion":"Q?","blockerArtifact":")" + times(300, "a") +
           R"(","blockerSecretName":")" + times(300, "s") + "\"}",
       R"([[ask:{"a":")" + times(300, "a") + R"(","k":"secret","s":")" + times(300, "s") +
           R"("}]] Q?)"},
  });
}

TEST(BlockerQuestion, ThatIsTooLongIsRefusedInItsTypedFormToo) {
  const BlockerQuestion question =
      compose(R"({"blockerKind":"decision","blockerQuestion":")" + times(141, "x") + "\"}");
  EXPECT_EQ(question.text, std::nullopt);
  EXPECT_EQ(question.refusedLength, 141);
  checkBlockers({{"its marker does not count",
                  R"({"blockerKind":"decision","blockerQuestion":")" + times(140, "x") + "\"}",
                  R"([[ask:{"k":"decision"}]] )" + times(140, "x")}});
}

}  // namespace
}  // namespace quillpost
