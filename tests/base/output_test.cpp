#include "base/output.h"

#include "base/unique_fd.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

namespace quillpost {
namespace {

struct Pipe {
  UniqueFd reader, writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{-1, -1};
  EXPECT_EQ(::pipe(ends.data()), 0);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

void makeNonBlocking(const UniqueFd& fd) {
  ASSERT_EQ(::fcntl(fd.get(), F_SETFL, ::fcntl(fd.get(), F_GETFL) | O_NONBLOCK), 0);
}

/// Everything up to the end of input.
std::string readAll(Input& input, std::size_t roomBytes = 1000) {
  std::string all, room(roomBytes, '\0');
  while (const std::size_t count = input.read(room)) all.append(room, 0, count);
  return all;
}

/// Ignores a signal for as long as it lives.
class IgnoredSignal {
 public:
  explicit IgnoredSignal(int signal) : signal_(signal) {
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    EXPECT_EQ(::sigaction(signal_, &ignore, &before_), 0);
  }
  ~IgnoredSignal() { ::sigaction(signal_, &before_, nullptr); }
  IgnoredSignal(const IgnoredSignal&) = delete;
  IgnoredSignal& operator=(const IgnoredSignal&) = delete;

 private:
  int signal_;
  struct sigaction before_ = {};
};

/// Interrupts the system calls of this process again and again for as long as it lives.
class Interruptions {
 public:
  Interruptions() {
    struct sigaction count = {};
    count.sa_handler = [](int) { ++seen; };  // and no SA_RESTART: the call itself must notice
    EXPECT_EQ(::sigaction(SIGALRM, &count, &before_), 0);
    seen = 0;
    const itimerval everyMillisecond{.it_interval = {0, 1000}, .it_value = {0, 1000}};
    EXPECT_EQ(::setitimer(ITIMER_REAL, &everyMillisecond, nullptr), 0);
  }
  ~Interruptions() {
    const itimerval never = {};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &before_, nullptr);
  }
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;

  static inline std::atomic<int> seen = 0;

 private:
  struct sigaction before_ = {};
};

/// Waits, in a thread that takes no signals, until this many interruptions have been seen.
void awaitInterruptions(int count) {
  while (Interruptions::seen < count) std::this_thread::yield();
}

/// A thread to which no signal is delivered, so that the tested thread gets them all.
template <class Work>
std::thread quietThread(Work work) {
  sigset_t alarm;
  sigset_t before;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  ::pthread_sigmask(SIG_BLOCK, &alarm, &before);
  std::thread thread(std::move(work));
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

/// Text that shows when a piece of it is lost, doubled or moved.
std::string countedText(std::size_t atLeast) {
  std::string text;
  for (std::size_t i = 0; text.size() < atLeast; ++i) text += std::to_string(i) + ",";
  return text;
}

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

TEST(FdInput, SaysWhetherSomethingOrTheEndHasCome) {
  Pipe pipe = makePipe();
  FdInput input(pipe.reader.get());
  EXPECT_FALSE(input.comesWithin(Duration(0)));
  ASSERT_EQ(::write(pipe.writer.get(), "a", 1), 1);
  EXPECT_TRUE(input.comesWithin(Duration(0)));
  std::array<char, 4> room{};
  EXPECT_EQ(input.read(room), 1u);
  EXPECT_FALSE(input.comesWithin(Duration(0)));
  pipe.writer = {};
  EXPECT_TRUE(input.comesWithin(Duration(0)));
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

}  // namespace
}  // namespace quillpost
