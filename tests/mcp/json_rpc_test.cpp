#include "mcp/json_rpc.h"

#include "harness/fake_client.h"
#include "harness/json_object.h"

#include <gtest/gtest.h>

namespace quillpost {
namespace {

using testing::FakeOutput;
using testing::objectFrom;
using Messages = std::vector<std::string>;

struct JsonRpc : ::testing::Test {
  FakeOutput output;
  JsonRpcWriter writer{output};
  const json::Tree id = 7;
};

TEST_F(JsonRpc, AResultIsOneLineAroundTheJsonItWasGiven) {
  writer.sendResult(&id, "{}");
  writer.sendResult(nullptr, R"({"a":[1]})");
  EXPECT_EQ(output.messages, (Messages{
                                 "{\"jsonrpc\":\"2.0\",\"result\":{},\"id\":7}\n",
                                 "{\"jsonrpc\":\"2.0\",\"result\":{\"a\":[1]},\"id\":null}\n",
                             }));
}

TEST_F(JsonRpc, ATextResultEscapesWhatAStringMustEscape) {
  using namespace std::string_view_literals;
  writer.sendText(&id, json::EscapedText("say \"hi\"\\\n\t\x01\0 é…😀/"sv), "");
  EXPECT_EQ(output.messages,
            Messages{"{\"jsonrpc\":\"2.0\",\"result\":{\"content\":[{\"type\":\"text\",\"text\":"
                     "\"say \\\"hi\\\"\\\\\\n\\t\\u0001\\u0000 é…😀/\"}],\"isError\":false},"
                     "\"id\":7}\n"});
}

TEST_F(JsonRpc, ATextResultEndsWithItsEnding) {
  struct Row {
    std::string_view text, ending, expected;
  };
  for (const Row& row : {
           Row{"Done.", "", R"("text":"Done.")"},
           Row{"Done.", "\n\nbehind", R"("text":"Done.\n\nbehind")"},
           Row{"", "\n\nbehind", R"("text":"\n\nbehind")"},
           Row{"", "", R"("text":"")"},
           Row{"Done.", "\"\\", R"x("text":"Done.\"\\")x"},
       }) {
    writer.sendText(&id, json::EscapedText(row.text), row.ending);
    const Messages messages = output.take();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].find(std::string(row.expected) + R"(}],"isError":false},"id":7})"),
              std::string::npos)
        << messages[0];
  }
}

TEST_F(JsonRpc, AnErrorHasACodeAndAMessage) {
  const json::Tree name = "a";
  writer.sendError(&name, methodNotFound, "Method not found: foo/bar");
  writer.sendError(nullptr, invalidParams, "Unknown tool: \"");
  EXPECT_EQ(output.messages, (Messages{
                                 "{\"jsonrpc\":\"2.0\",\"error\":{\"code\":-32601,"
                                 "\"message\":\"Method not found: foo/bar\"},\"id\":\"a\"}\n",
                                 "{\"jsonrpc\":\"2.0\",\"error\":{\"code\":-32602,"
                                 "\"message\":\"Unknown tool: \\\"\"},\"id\":null}\n",
                             }));
}

TEST_F(JsonRpc, ProgressCarriesTheTokenAsItCame) {
  for (const std::string_view token : {"7", R"("t")", "null", R"({"a":[1,2]})",
                                       "18446744073709551615", "-9223372036854775808", "true"}) {
    const json::TreeObject params = objectFrom(std::string(R"({"t":)").append(token) + "}");
    EXPECT_TRUE(writer.sendProgress(*json::find(params, "t"), 2, "Listening…"));
    EXPECT_EQ(output.take(),
              Messages{std::string(R"({"jsonrpc":"2.0","method":"notifications/progress",)")
                           .append(R"("params":{"progressToken":)")
                           .append(token)
                           .append(R"(,"progress":2,"message":"Listening…"}})")
                           .append("\n")});
  }
}

TEST_F(JsonRpc, IdsGoBackAsTheyCame) {
  for (const std::string_view given :
       {"0", "-1", "9223372036854775807", "-9223372036854775808", "9223372036854775808",
        "18446744073709551615", R"("")", R"("7")", R"("é\n\"")", "true", "false", "null", "[]",
        R"([1,"a",null])", "{}", R"({"b":1,"a":{"c":[]}})"}) {
    const json::TreeObject message = objectFrom(std::string(R"({"id":)").append(given) + "}");
    writer.sendResult(json::find(message, "id"), "{}");
    EXPECT_EQ(
        output.take(),
        Messages{std::string(R"({"jsonrpc":"2.0","result":{},"id":)").append(given).append("}\n")});
  }
}

TEST_F(JsonRpc, DoublesGoBackAsTheSameNumber) {
  for (const std::string_view given : {"1.5", "0.1", "-2.25e-7", "1e300", "5e-324", "3.0",
                                       "36893488147419103232", "0.30000000000000004"}) {
    const json::TreeObject message = objectFrom(std::string(R"({"id":)").append(given) + "}");
    writer.sendResult(json::find(message, "id"), "{}");
    const Messages messages = output.take();
    ASSERT_EQ(messages.size(), 1u);
    const json::TreeObject answer = objectFrom(messages[0]);
    ASSERT_TRUE(answer.at("id").is_double()) << messages[0];
    EXPECT_EQ(answer.at("id").get_double(), message.at("id").get_double()) << given;
  }
}

TEST_F(JsonRpc, AHugeResultIsOneMessageAndLeavesNothingBehind) {
  const std::string huge(std::size_t{4} << 20, 'x');
  writer.sendText(&id, json::EscapedText(huge), "");
  writer.sendResult(&id, "{}");
  ASSERT_EQ(output.messages.size(), 2u);
  EXPECT_TRUE(output.messages[0] ==
              R"({"jsonrpc":"2.0","result":{"content":[{"type":"text","text":")" + huge +
                  R"("}],"isError":false},"id":7})" + "\n");
  EXPECT_EQ(output.messages[1], "{\"jsonrpc\":\"2.0\",\"result\":{},\"id\":7}\n");
}

TEST_F(JsonRpc, NothingIsWrittenOnceTheReaderHasGone) {
  output.room = 1;
  EXPECT_TRUE(writer.connected());
  EXPECT_TRUE(writer.sendProgress(id, 1, "a"));
  EXPECT_TRUE(writer.connected());
  EXPECT_FALSE(writer.sendProgress(id, 2, "b"));
  EXPECT_FALSE(writer.connected());
  writer.sendResult(&id, "{}");
  writer.sendText(&id, json::EscapedText("text"), "behind");
  writer.sendError(&id, methodNotFound, "m");
  EXPECT_FALSE(writer.sendProgress(id, 3, "c"));
  EXPECT_FALSE(writer.connected());
  EXPECT_EQ(output.messages.size(), 1u);
  EXPECT_EQ(output.refused, 1) << "a reader that has gone is not tried again";
}

}  // namespace
}  // namespace quillpost
