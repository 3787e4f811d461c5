#include "board/person/stopping.h"

#include <gtest/gtest.h>

#include <csignal>

#include <poll.h>

namespace quillpost::board {
namespace {

TEST(Stopping, ASignalIsSomethingToReadAndEndsNothing) {
  const UniqueFd stop = catchSignals();
  ASSERT_TRUE(stop);
  pollfd waiting{stop.get(), POLLIN, 0};
  EXPECT_EQ(::poll(&waiting, 1, 0), 0);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::raise(signal);
  EXPECT_EQ(::poll(&waiting, 1, 0), 1);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::signal(signal, SIG_DFL);
}

}  // namespace
}  // namespace quillpost::board
