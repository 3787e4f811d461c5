#include "base/output.h"

#include "base/pipes.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <thread>

#include <signal.h>

namespace quillpost {
namespace {

TEST(FdOutput, WritesWhatItIsGiven) {
  Pipe pipe = makePipe();
  FdOutput output(pipe.writer.get());
  EXPECT_TRUE(output.write("one\n"));
  EXPECT_TRUE(output.write(std::string_view("t\0o\n", 4)));
  EXPECT_TRUE(output.write(""));
  pipe.writer = {};
  FdInput input(pipe.reader.get());
  EXPECT_EQ(readAll(input), std::string("one\nt\0o\n", 8));
}

TEST(FdOutput, GoesOnWhereAShortWriteStopped) {
  const std::string text = countedText(1 << 20);  // many times what a pipe holds
  for (const bool nonBlocking : {false, true}) {
    Pipe pipe = makePipe();
    if (nonBlocking) makeNonBlocking(pipe.writer);
    std::string received;
    std::thread reader([&] {
      FdInput input(pipe.reader.get());
      received = readAll(input, 777);
    });
    FdOutput output(pipe.writer.get());
    EXPECT_TRUE(output.write(text));
    pipe.writer = {};
    reader.join();
    EXPECT_TRUE(received == text) << "non-blocking: " << nonBlocking;
  }
}

TEST(FdOutput, SaysThatTheReaderHasGone) {
  const IgnoredSignal ignored(SIGPIPE);
  Pipe pipe = makePipe();
  pipe.reader = {};
  FdOutput output(pipe.writer.get());
  EXPECT_FALSE(output.write("one\n"));
  makeNonBlocking(pipe.writer);
  EXPECT_FALSE(output.write("two\n"));
}

TEST(FdOutput, SaysThatTheReaderHasGoneWhileAFullPipeIsWaitedFor) {
  const IgnoredSignal ignored(SIGPIPE);
  Pipe pipe = makePipe();
  makeNonBlocking(pipe.writer);
  FdOutput output(pipe.writer.get());
  std::thread reader([&] {
    FdInput input(pipe.reader.get());
    std::array<char, 10> room{};
    EXPECT_GT(input.read(room), 0u);
    pipe.reader = {};
  });
  EXPECT_FALSE(output.write(countedText(1 << 20)));
  reader.join();
}

TEST(FdOutput, CannotWriteToWhatIsNotOpenForWriting) {
  Pipe pipe = makePipe();
  EXPECT_FALSE(FdOutput(pipe.reader.get()).write("x\n"));
  EXPECT_FALSE(FdOutput(-1).write("x\n"));
  EXPECT_TRUE(FdOutput(-1).write("")) << "nothing can always be written";
}

TEST(FdOutput, IsNotStoppedByInterruptions) {
  const std::string text = countedText(1 << 20);
  for (const bool nonBlocking : {false, true}) {
    Pipe pipe = makePipe();
    if (nonBlocking) makeNonBlocking(pipe.writer);
    const Interruptions interruptions;
    std::string received;
    std::thread reader = quietThread([&] {
      awaitInterruptions(5);  // while the writer stands before a full pipe
      FdInput input(pipe.reader.get());
      received = readAll(input);
    });
    FdOutput output(pipe.writer.get());
    EXPECT_TRUE(output.write(text));
    pipe.writer = {};
    reader.join();
    EXPECT_TRUE(received == text) << "non-blocking: " << nonBlocking;
    EXPECT_GE(Interruptions::seen, 5);
  }
}

}  // namespace
}  // namespace quillpost
