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

TEST(Spawning, AGateIsOpenedOnceAndOneThatIsDroppedIsTheEndOfWhatWaitsAtIt) {
  const auto wait = [](int end) {
    char opened = 0;
    return ::read(end, &opened, 1);
  };
  Gate none;
  none.open();
  Pipe pipe;
  UniqueFd waiting(::dup(pipe.reading.get()));
  Gate gate(std::move(pipe));
  gate.open();
  gate.open();
  EXPECT_EQ(wait(waiting.get()), 1);
  EXPECT_EQ(wait(waiting.get()), 0);

  Pipe other;
  waiting = UniqueFd(::dup(other.reading.get()));
  { const Gate dropped(std::move(other)); }
  EXPECT_EQ(wait(waiting.get()), 0);

  // Nobody waits there any more, and no signal comes of that.
  EXPECT_EXIT((Gate(Pipe()).open(), std::_Exit(0)), ::testing::ExitedWithCode(0), "");
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
