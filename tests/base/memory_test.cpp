#include "base/memory.h"

#include "harness/sanitized.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace quillpost {
namespace {

constexpr std::size_t large = std::size_t{2} << 20;

TEST(MemoryKeeper, HoldsMuchFromSomethingLargeUntilItGivesBack) {
  MemoryKeeper memory;
  EXPECT_FALSE(memory.holdsMuch());
  memory.took(large - 1);
  EXPECT_FALSE(memory.holdsMuch()) << "many small things are not a large one";
  memory.took(large - 1);
  EXPECT_FALSE(memory.holdsMuch());
  memory.took(large);
  EXPECT_TRUE(memory.holdsMuch());
  memory.took(0);
  EXPECT_TRUE(memory.holdsMuch()) << "what comes after it takes nothing back";
  memory.giveBack();
  EXPECT_FALSE(memory.holdsMuch());
}

TEST(MemoryKeeper, LeavesWhatIsInUseAsItIs) {
  MemoryKeeper memory;
  std::vector<std::string> texts;
  for (char letter = 'a'; letter <= 'z'; ++letter) texts.emplace_back(10'000, letter);
  for (std::size_t i = 0; i < texts.size(); i += 2) texts[i] = std::string();
  memory.took(large);
  memory.giveBack();
  for (std::size_t i = 1; i < texts.size(); i += 2)
    EXPECT_EQ(texts[i], std::string(10'000, static_cast<char>('a' + i)));
}

// A sanitizer has an allocator of its own, which keeps what was freed.
#if defined(__GLIBC__) && !QUILLPOST_SANITIZED
std::size_t residentBytes() {
  std::ifstream file("/proc/self/statm");
  std::size_t allPages = 0, residentPages = 0;
  file >> allPages >> residentPages;
  return residentPages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST(MemoryKeeper, MakesTheProcessSmallAgainAfterSomethingLargeOnly) {
  MemoryKeeper memory;
  constexpr std::size_t mebibyte = std::size_t{1} << 20;
  std::vector<std::string> texts;
  for (int i = 0; i < 32 * 1024; ++i) texts.emplace_back(1000, 'x');
  // Keeps the end of the heap in place, so that freeing alone gives nothing back.
  const std::string pin(1000, 'p');
  const std::size_t full = residentBytes();
  texts.clear();
  memory.giveBack();
  EXPECT_GT(residentBytes() + 16 * mebibyte, full) << "nothing large has come through";
  memory.took(large);
  memory.giveBack();
  EXPECT_LT(residentBytes() + 16 * mebibyte, full);
  EXPECT_EQ(pin.back(), 'p');
}
#endif

}  // namespace
}  // namespace quillpost
