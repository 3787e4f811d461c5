// What the program's file says of itself: that it is loaded anywhere, that nothing in it is both
// writable and executable, and that it was compiled to notice when something goes out of bounds.

#include "harness/paths.h"
#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <elf.h>

namespace quillpost {
namespace {

using Header = std::conditional_t<sizeof(void*) == 8, Elf64_Ehdr, Elf32_Ehdr>;
using Segment = std::conditional_t<sizeof(void*) == 8, Elf64_Phdr, Elf32_Phdr>;
using Dynamic = std::conditional_t<sizeof(void*) == 8, Elf64_Dyn, Elf32_Dyn>;

/// The program as it lies on disk.
class Hardening : public ::testing::Test {
 protected:
  template <class T>
  T at(std::size_t offset) const {
    T value{};
    EXPECT_LE(offset + sizeof value, file.size());
    if (offset + sizeof value <= file.size())
      std::memcpy(&value, file.data() + offset, sizeof value);
    return value;
  }

  std::vector<Segment> segments() const {
    const auto header = at<Header>(0);
    std::vector<Segment> all;
    for (std::size_t i = 0; i < header.e_phnum; ++i)
      all.push_back(at<Segment>(header.e_phoff + i * header.e_phentsize));
    return all;
  }

  /// The value of an entry of the dynamic section; 0 when there is none.
  std::size_t dynamic(decltype(Dynamic::d_tag) tag) const {
    for (const Segment& segment : segments()) {
      if (segment.p_type != PT_DYNAMIC) continue;
      for (std::size_t i = 0; i < segment.p_filesz / sizeof(Dynamic); ++i) {
        const auto entry = at<Dynamic>(segment.p_offset + i * sizeof(Dynamic));
        if (entry.d_tag == tag) return entry.d_un.d_val;
      }
    }
    return 0;
  }

  std::size_t countOf(std::string_view bytes) const {
    std::size_t count = 0;
    for (std::size_t from = file.find(bytes); from != std::string::npos;
         from = file.find(bytes, from + 1))
      ++count;
    return count;
  }

  const std::string file = testing::readFile(testing::seatProgram());
};

TEST_F(Hardening, ItIsLoadedAnywhere) {
  ASSERT_TRUE(file.starts_with(std::string_view(ELFMAG, SELFMAG)));
  EXPECT_EQ(at<Header>(0).e_type, ET_DYN);
  EXPECT_NE(dynamic(DT_FLAGS_1) & DF_1_PIE, 0U);
}

TEST_F(Hardening, WhatTheLinkerFillsInIsReadOnlyAfterwards) {
  bool hasProtectedPart = false;
  for (const Segment& segment : segments()) hasProtectedPart |= segment.p_type == PT_GNU_RELRO;
  EXPECT_TRUE(hasProtectedPart);
  EXPECT_NE(dynamic(DT_FLAGS_1) & DF_1_NOW, 0U) << "filled in one by one as it is needed";
}

TEST_F(Hardening, NothingIsWritableAndExecutable) {
  bool saysStack = false;
  for (const Segment& segment : segments()) {
    if (segment.p_type == PT_GNU_STACK) saysStack = true;
    if (segment.p_type != PT_GNU_STACK && segment.p_type != PT_LOAD) continue;
    EXPECT_NE(segment.p_flags & (PF_W | PF_X), static_cast<unsigned>(PF_W | PF_X))
        << "at " << segment.p_offset;
  }
  EXPECT_TRUE(saysStack) << "the stack is executable where nothing is said of it";
}

TEST_F(Hardening, ItNoticesWhenTheStackOrABufferIsOverrun) {
  EXPECT_GT(countOf("__stack_chk_fail"), 0U);
  EXPECT_GT(countOf("_chk@") + countOf(std::string_view("_chk\0", 5)), 0U)
      << "no function of the C library checks its buffer";
}

TEST_F(Hardening, ItsFunctionsAreMarkedAsPlacesToJumpTo) {
#if defined(__x86_64__)
  constexpr std::array<char, 4> mark = {'\xf3', '\x0f', '\x1e', '\xfa'};  // endbr64
#elif defined(__aarch64__)
  constexpr std::array<char, 4> mark = {'\x3f', '\x23', '\x03', '\xd5'};  // paciasp
#else
#error "how does this processor mark the beginning of a function?"
#endif
  // A handful come with the objects that the C library adds to every program.
  EXPECT_GT(countOf({mark.data(), mark.size()}), 200U);
}

}  // namespace
}  // namespace quillpost
