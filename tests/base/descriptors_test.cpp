#include "base/descriptors.h"

#include "base/pipes.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <poll.h>

namespace quillpost {
namespace {

TEST(MayTryAgain, AfterAnInterruptionOnly) {
  errno = EINTR;
  EXPECT_TRUE(mayTryAgain(-1, POLLIN));
  for (const int error : {EBADF, EPIPE, EIO, EINVAL}) {
    errno = error;
    EXPECT_FALSE(mayTryAgain(-1, POLLIN)) << error;
  }
}

TEST(MayTryAgain, WhenWhatWasMissingIsThere) {
  const Pipe pipe = makePipe();
  for (const int error : {EAGAIN, EWOULDBLOCK}) {
    errno = error;
    EXPECT_TRUE(mayTryAgain(pipe.writer.get(), POLLOUT)) << "an empty pipe has room";
  }
}

}  // namespace
}  // namespace quillpost
