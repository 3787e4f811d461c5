#pragma once

// How much memory the program holds, counted in blocks, apart from what the test around it holds.

#include <cstdint>

namespace quillpost::simulation {

/// How many blocks are held that were taken while their taker was watched.
int64_t watchedBlocks();

/// While one lives, what is taken counts, or does not. Nests.
class BlockWatch {
 public:
  explicit BlockWatch(bool counts);
  ~BlockWatch();
  BlockWatch(const BlockWatch&) = delete;
  BlockWatch& operator=(const BlockWatch&) = delete;

 private:
  bool before_;
};

}  // namespace quillpost::simulation
