// What the program's file says of itself: that it is loaded anywhere and needs no other file, that
// nothing in it is both writable and executable, and that it was compiled to notice when something
// goes out of bounds.

#include "harness/elf_file.h"
#include "harness/paths.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string_view>

#include <elf.h>

namespace quillpost {
namespace {

using testing::ElfFile;

struct Hardening : ::testing::Test {
  std::size_t flags() const {
    const std::vector<std::size_t> all = seat.dynamic(DT_FLAGS_1);
    return all.empty() ? 0 : all.front();
  }

  const ElfFile seat{testing::seatProgram()};
  /// The same with the C library beside it, so that the functions that it asks for have their
  /// names.
  const ElfFile sharedSeat{testing::sharedSeatProgram()};
};

TEST_F(Hardening, ItIsLoadedAnywhere) {
  EXPECT_EQ(seat.header().e_type, ET_DYN);
  EXPECT_NE(flags() & DF_1_PIE, 0U);
}

TEST_F(Hardening, ItAsksForNoInterpreterAndNoLibraryWhereTheCLibraryIsBuiltIn) {
  EXPECT_EQ(seat.hasSegment(PT_INTERP), !testing::isSeatStatic());
  EXPECT_EQ(seat.dynamic(DT_NEEDED).empty(), testing::isSeatStatic());
  EXPECT_TRUE(sharedSeat.needsOthers());
}

TEST_F(Hardening, WhatTheLinkerFillsInIsReadOnlyAfterwards) {
  EXPECT_TRUE(seat.hasSegment(PT_GNU_RELRO));
  EXPECT_NE(flags() & DF_1_NOW, 0U) << "filled in one by one as it is needed";
}

TEST_F(Hardening, NothingIsWritableAndExecutable) {
  for (const ElfFile::Segment& segment : seat.segments()) {
    if (segment.p_type != PT_GNU_STACK && segment.p_type != PT_LOAD) continue;
    EXPECT_NE(segment.p_flags & (PF_W | PF_X), static_cast<unsigned>(PF_W | PF_X))
        << "at " << segment.p_offset;
  }
  EXPECT_TRUE(seat.hasSegment(PT_GNU_STACK)) << "the stack is executable where nothing is said";
}

TEST_F(Hardening, ItNoticesWhenTheStackOrABufferIsOverrun) {
  EXPECT_GT(sharedSeat.countOf("__stack_chk_fail"), 0U);
  EXPECT_GT(sharedSeat.countOf("_chk@") + sharedSeat.countOf(std::string_view("_chk\0", 5)), 0U)
      << "no function of the C library checks its buffer";
  if (!testing::isSeatStatic()) return;
  // Without names there is what they say when it happens.
  EXPECT_EQ(seat.countOf("stack smashing detected"), 1U);
  EXPECT_EQ(seat.countOf("buffer overflow detected"), 1U);
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
  EXPECT_GT(sharedSeat.countOf({mark.data(), mark.size()}), 200U);
  EXPECT_GE(seat.countOf({mark.data(), mark.size()}), 200U);
}

}  // namespace
}  // namespace quillpost
