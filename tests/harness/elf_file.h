#pragma once

// What the file of a Linux program says of itself.

#include "harness/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <elf.h>

namespace quillpost::testing {

/// A program as it lies on disk.
class ElfFile {
 public:
  using Header = std::conditional_t<sizeof(void*) == 8, Elf64_Ehdr, Elf32_Ehdr>;
  using Segment = std::conditional_t<sizeof(void*) == 8, Elf64_Phdr, Elf32_Phdr>;
  using Dynamic = std::conditional_t<sizeof(void*) == 8, Elf64_Dyn, Elf32_Dyn>;

  /// Fails the test when it is no such program.
  explicit ElfFile(const std::string& path) : bytes_(readFile(path)) {
    EXPECT_TRUE(bytes_.starts_with(std::string_view(ELFMAG, SELFMAG))) << path;
  }

  Header header() const { return at<Header>(0); }

  std::vector<Segment> segments() const {
    std::vector<Segment> all;
    for (std::size_t i = 0; i < header().e_phnum; ++i)
      all.push_back(at<Segment>(header().e_phoff + i * header().e_phentsize));
    return all;
  }

  bool hasSegment(decltype(Segment::p_type) type) const {
    const std::vector<Segment> all = segments();
    return std::any_of(all.begin(), all.end(),
                       [&](const Segment& one) { return one.p_type == type; });
  }

  /// The values of the entries of the dynamic section that have this tag.
  std::vector<std::size_t> dynamic(decltype(Dynamic::d_tag) tag) const {
    std::vector<std::size_t> values;
    for (const Segment& segment : segments()) {
      if (segment.p_type != PT_DYNAMIC) continue;
      for (std::size_t i = 0; i < segment.p_filesz / sizeof(Dynamic); ++i) {
        const auto entry = at<Dynamic>(segment.p_offset + i * sizeof(Dynamic));
        if (entry.d_tag == tag) values.push_back(entry.d_un.d_val);
      }
    }
    return values;
  }

  /// Whether another file has to be there for the program to start.
  bool needsOthers() const { return hasSegment(PT_INTERP) || !dynamic(DT_NEEDED).empty(); }

  /// How often these bytes stand in it.
  std::size_t countOf(std::string_view bytes) const {
    std::size_t count = 0;
    for (std::size_t from = bytes_.find(bytes); from != std::string::npos;
         from = bytes_.find(bytes, from + 1))
      ++count;
    return count;
  }

 private:
  template <class T>
  T at(std::size_t offset) const {
    T value{};
    EXPECT_LE(offset + sizeof value, bytes_.size());
    if (offset + sizeof value <= bytes_.size())
      std::memcpy(&value, bytes_.data() + offset, sizeof value);
    return value;
  }

  std::string bytes_;
};

}  // namespace quillpost::testing
