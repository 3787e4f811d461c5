#include "simulation/live_blocks.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace quillpost::simulation {
namespace {

// The binary has one thread.
int64_t blocks = 0;
bool counting = false;

/// In front of every block; as large as the strictest alignment, so that the block keeps it.
struct alignas(std::max_align_t) Mark {
  bool counted;
};

}  // namespace

int64_t watchedBlocks() { return blocks; }

BlockWatch::BlockWatch(bool counts) : before_(counting) { counting = counts; }
BlockWatch::~BlockWatch() { counting = before_; }

/// A block of `size` bytes behind its mark; null when there is no memory.
static void* take(std::size_t size) {
  void* whole = std::malloc(sizeof(Mark) + size);
  if (whole == nullptr) return nullptr;
  Mark* mark = ::new (whole) Mark{counting};
  if (counting) ++blocks;
  return mark + 1;
}

/// Gives a block back.
static void give(void* block) {
  if (block == nullptr) return;
  Mark* mark = static_cast<Mark*>(block) - 1;
  if (mark->counted) --blocks;
  std::free(mark);
}

}  // namespace quillpost::simulation

// The C++ runtime finds these before its own. Its other forms end in them, but a sanitizer's do
// not: every form that is used with any of these is here.
void* operator new(std::size_t size) {
  void* block = quillpost::simulation::take(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return quillpost::simulation::take(size);
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* block) noexcept { quillpost::simulation::give(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept {
  quillpost::simulation::give(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
  quillpost::simulation::give(block);
}
void operator delete[](void* block) noexcept { quillpost::simulation::give(block); }
void operator delete[](void* block, std::size_t /*size*/) noexcept {
  quillpost::simulation::give(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
  quillpost::simulation::give(block);
}
