#pragma once

// Pipes in every state that a harness may leave one in.

#include "base/input.h"
#include "base/unique_fd.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

namespace quillpost {

/// Both ends of one.
struct Pipe {
  UniqueFd reader, writer;
};

inline Pipe makePipe() {
  std::array<int, 2> ends{-1, -1};
  EXPECT_EQ(::pipe(ends.data()), 0);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

inline void makeNonBlocking(const UniqueFd& fd) {
  ASSERT_EQ(::fcntl(fd.get(), F_SETFL, ::fcntl(fd.get(), F_GETFL) | O_NONBLOCK), 0);
}

/// Everything up to the end of input.
inline std::string readAll(Input& input, std::size_t roomBytes = 1000) {
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
inline void awaitInterruptions(int count) {
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
inline std::string countedText(std::size_t atLeast) {
  std::string text;
  for (std::size_t i = 0; text.size() < atLeast; ++i) text += std::to_string(i) + ",";
  return text;
}

}  // namespace quillpost
