#include "board/serving/spawning.h"

#include <gtest/gtest.h>

#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace quillpost::board {
namespace {

TEST(Spawning, APipeIsNoStandardStreamAndNoChildInheritsIt) {
  const Pipe pipe;
  for (const int end : {pipe.reading.get(), pipe.writing.get()}) {
    EXPECT_GT(end, STDERR_FILENO);
    EXPECT_EQ(::fcntl(end, F_GETFD), FD_CLOEXEC);
  }
  ASSERT_EQ(::write(pipe.writing.get(), "x", 1), 1);
  char got = 0;
  EXPECT_EQ(::read(pipe.reading.get(), &got, 1), 1);
  EXPECT_EQ(got, 'x');
}

TEST(Spawning, TextsEndWithANullPointer) {
  const std::vector<std::string> texts = {"one", ""};
  const std::vector<char*> pointers = pointersTo(texts);
  ASSERT_EQ(pointers.size(), 3u);
  EXPECT_EQ(std::string_view(pointers[0]), "one");
  EXPECT_EQ(std::string_view(pointers[1]), "");
  EXPECT_EQ(pointers[2], nullptr);
}

}  // namespace
}  // namespace quillpost::board
