#include "mcp/line_splitter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace quillpost {
namespace {

constexpr std::size_t chunkBytes = std::size_t{64} << 10;

/// Feeds the whole in chunks, as they come out of a pipe.
std::size_t linesIn(std::string_view whole) {
  LineSplitter splitter;
  std::size_t lines = 0;
  for (; !whole.empty(); whole.remove_prefix(std::min(chunkBytes, whole.size()))) {
    splitter.feed(whole.substr(0, chunkBytes));
    while (splitter.next()) ++lines;
  }
  return lines;
}

void splitLinesOf(benchmark::State& state) {
  const std::string line = std::string(static_cast<std::size_t>(state.range(0)) - 1, 'x') + '\n';
  std::string whole;
  while (whole.size() < (std::size_t{1} << 22)) whole += line;
  for (auto _ : state) benchmark::DoNotOptimize(linesIn(whole));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(whole.size()));
}
BENCHMARK(splitLinesOf)->ArgName("bytes")->Arg(48)->Arg(1000)->Arg(100'000)->Arg(1 << 26);

}  // namespace
}  // namespace quillpost
