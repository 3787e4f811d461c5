#include "board/serving/reply.h"

#include "model/coding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpost::board {
namespace {

using ::testing::HasSubstr;

TEST(Reply, OneThatIsTooLargeBecomesWordsAndCarriesNothing) {
  Answer answer;
  answer.response.kind = TeamworkResponse::Kind::written;
  answer.response.message = std::string(replyLimit, 'x');
  answer.response.threadTag = "T-abc234";
  answer.receipt = Receipt{{"T-abc234", "s", "1", "1", "1"}, 7};
  const std::string line = replyLine(answer);
  const auto sent = decodeResponse(line);
  ASSERT_TRUE(sent);
  EXPECT_EQ(sent->kind, TeamworkResponse::Kind::error);
  EXPECT_THAT(sent->message.value_or(""), HasSubstr("read_task"));
  EXPECT_EQ(sent->threadTag, "T-abc234");
  EXPECT_EQ(answer.receipt->delivery.wakesUpTo, "");
  EXPECT_EQ(answer.receipt->delivery.messagesUpTo, "");
  EXPECT_EQ(answer.receipt->write, 7u) << "it was carried out, and need not be again";
}

TEST(Reply, EveryOtherIsOneLineAsItIs) {
  Answer answer;
  answer.response.message = "a\nb";
  const std::string line = replyLine(answer);
  EXPECT_EQ(line.find('\n'), line.size() - 1);
  EXPECT_EQ(decodeResponse(line), answer.response);
}

}  // namespace
}  // namespace quillpost::board
