#include "base/input.h"

#include "base/pipes.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <string_view>
#include <thread>

#include <unistd.h>

namespace quillpost {
namespace {

using namespace std::chrono_literals;

TEST(FdInput, GivesWhatHasArrivedAndThenTheEnd) {
  Pipe pipe = makePipe();
  ASSERT_EQ(::write(pipe.writer.get(), "abcdef", 6), 6);
  FdInput input(pipe.reader.get());
  std::array<char, 4> room{};
  EXPECT_EQ(input.read(room), 4u);
  EXPECT_EQ(std::string_view(room.data(), 4), "abcd");
  EXPECT_EQ(input.read(room), 2u);
  EXPECT_EQ(std::string_view(room.data(), 2), "ef");
  pipe.writer = {};
  EXPECT_EQ(input.read(room), 0u);
  EXPECT_EQ(input.read(room), 0u);
}

TEST(FdInput, IsNotStoppedByInterruptionsWhileNothingArrives) {
  for (const bool nonBlocking : {false, true}) {
    Pipe pipe = makePipe();
    if (nonBlocking) makeNonBlocking(pipe.reader);
    const Interruptions interruptions;
    std::thread writer = quietThread([&] {
      awaitInterruptions(5);
      EXPECT_EQ(::write(pipe.writer.get(), "late", 4), 4);
      awaitInterruptions(10);
      pipe.writer = {};
    });
    FdInput input(pipe.reader.get());
    EXPECT_EQ(readAll(input), "late") << "non-blocking: " << nonBlocking;
    writer.join();
  }
}

TEST(FdInput, IsAtItsEndWhenItCannotBeRead) {
  Pipe pipe = makePipe();
  std::array<char, 4> room{};
  EXPECT_EQ(FdInput(pipe.writer.get()).read(room), 0u);
  EXPECT_EQ(FdInput(-1).read(room), 0u);
}

TEST(FdInput, KnowsWhetherItsWriterGoesOn) {
  Pipe pipe = makePipe();
  FdInput input(pipe.reader.get());
  EXPECT_FALSE(input.comesWithin(0s));
  EXPECT_FALSE(input.comesWithin(1ms));
  ASSERT_EQ(::write(pipe.writer.get(), "ab", 2), 2);
  EXPECT_TRUE(input.comesWithin(0s));
  std::array<char, 4> room{};
  EXPECT_EQ(input.read(room), 2u) << "being asked took nothing";
  EXPECT_FALSE(input.comesWithin(0s));
  pipe.writer = {};
  EXPECT_TRUE(input.comesWithin(0s)) << "the end can be read too";
}

}  // namespace
}  // namespace quillpost
