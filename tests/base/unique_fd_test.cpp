#include "base/unique_fd.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <type_traits>

#include <fcntl.h>

namespace quillpost {
namespace {

static_assert(!std::is_copy_constructible_v<UniqueFd> && !std::is_copy_assignable_v<UniqueFd>);
static_assert(std::is_nothrow_move_constructible_v<UniqueFd> &&
              std::is_nothrow_move_assignable_v<UniqueFd>);

int openSomething() { return ::open("/", O_RDONLY | O_CLOEXEC); }

bool isOpen(int fd) { return ::fcntl(fd, F_GETFD) != -1 || errno != EBADF; }

TEST(UniqueFd, OwnsNothingByDefaultOrWhenOpeningFailed) {
  EXPECT_FALSE(UniqueFd());
  EXPECT_EQ(UniqueFd().get(), -1);
  EXPECT_FALSE(UniqueFd(-1));
}

TEST(UniqueFd, CountsDescriptorZeroAsOne) {
  // Taken back before the end, so that the test keeps its standard input.
  const int saved = ::dup(0);
  {
    const UniqueFd zero(0);
    EXPECT_TRUE(zero);
    EXPECT_EQ(zero.get(), 0);
  }
  EXPECT_FALSE(isOpen(0));
  if (saved >= 0) {
    EXPECT_EQ(::dup2(saved, 0), 0);
    ::close(saved);
  }
}

TEST(UniqueFd, ClosesAtTheEndOfItsLife) {
  const int fd = openSomething();
  ASSERT_GE(fd, 0);
  {
    const UniqueFd owner(fd);
    EXPECT_TRUE(owner);
    EXPECT_EQ(owner.get(), fd);
    EXPECT_TRUE(isOpen(fd));
  }
  EXPECT_FALSE(isOpen(fd));
}

TEST(UniqueFd, HandsItsDescriptorOverWhenMoved) {
  const int fd = openSomething();
  ASSERT_GE(fd, 0);
  UniqueFd first(fd);
  {
    const UniqueFd second(std::move(first));
    EXPECT_EQ(second.get(), fd);
    EXPECT_EQ(first.get(), -1);  // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(isOpen(fd));
  }
  EXPECT_FALSE(isOpen(fd));
}

TEST(UniqueFd, ClosesWhatItHadWhenAnotherIsMovedIn) {
  const int old = openSomething();
  const int fresh = openSomething();
  ASSERT_GE(old, 0);
  ASSERT_GE(fresh, 0);
  UniqueFd owner(old);
  owner = UniqueFd(fresh);
  EXPECT_FALSE(isOpen(old));
  EXPECT_TRUE(isOpen(fresh));
  EXPECT_EQ(owner.get(), fresh);
  owner = UniqueFd();
  EXPECT_FALSE(isOpen(fresh));
  EXPECT_FALSE(owner);
}

TEST(UniqueFd, SurvivesBeingMovedIntoItself) {
  const int fd = openSomething();
  ASSERT_GE(fd, 0);
  UniqueFd owner(fd);
  UniqueFd& same = owner;
  owner = std::move(same);
  EXPECT_EQ(owner.get(), fd);
  EXPECT_TRUE(isOpen(fd));
}

}  // namespace
}  // namespace quillpost
