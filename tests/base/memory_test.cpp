#include "base/memory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace quillpost {
namespace {

TEST(ReturnFreeMemory, LeavesWhatIsInUseAsItIs) {
  std::vector<std::string> texts;
  for (char letter = 'a'; letter <= 'z'; ++letter) texts.emplace_back(10'000, letter);
  for (std::size_t i = 0; i < texts.size(); i += 2) texts[i] = std::string();
  returnFreeMemory();
  for (std::size_t i = 1; i < texts.size(); i += 2)
    EXPECT_EQ(texts[i], std::string(10'000, static_cast<char>('a' + i)));
}

// A sanitizer has an allocator of its own, which keeps what was freed.
#if defined(__SANITIZE_ADDRESS__)
#define QUILLPOST_OWN_ALLOCATOR
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLPOST_OWN_ALLOCATOR
#endif
#endif

#if defined(__GLIBC__) && !defined(QUILLPOST_OWN_ALLOCATOR)
std::size_t residentBytes() {
  std::ifstream file("/proc/self/statm");
  std::size_t allPages = 0, residentPages = 0;
  file >> allPages >> residentPages;
  return residentPages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST(ReturnFreeMemory, MakesTheProcessSmallAgain) {
  constexpr std::size_t mebibyte = std::size_t{1} << 20;
  std::vector<std::string> texts;
  for (int i = 0; i < 32 * 1024; ++i) texts.emplace_back(1000, 'x');
  // Keeps the end of the heap in place, so that freeing alone gives nothing back.
  const std::string pin(1000, 'p');
  const std::size_t full = residentBytes();
  texts.clear();
  returnFreeMemory();
  EXPECT_LT(residentBytes() + 16 * mebibyte, full);
  EXPECT_EQ(pin.back(), 'p');
}
#endif

}  // namespace
}  // namespace quillpost
