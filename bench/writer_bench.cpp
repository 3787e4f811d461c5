#include "json/writer.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost {
namespace {

/// `piece` again and again up to about 1 MB, written as the inside of a JSON string.
void escape(benchmark::State& state, std::string_view piece) {
  constexpr std::size_t wholeBytes = std::size_t{1} << 20;
  std::string whole;
  while (whole.size() < wholeBytes) whole += piece;
  std::string out;
  for (auto _ : state) {
    out.clear();
    json::appendEscaped(out, whole);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(whole.size()));
}
BENCHMARK_CAPTURE(escape, prose, "The parser keeps its cursor while the board moves on. ");
BENCHMARK_CAPTURE(escape, json, R"({"id":"t100001","title":"Export settings","ready":true},)");
BENCHMARK_CAPTURE(escape, lines, "One line of a brief.\n");
BENCHMARK_CAPTURE(escape, quotesOnly, "\"");
BENCHMARK_CAPTURE(escape, beyondAscii, "Übergröße — “naïve” 🚀 ");

void appendSmallObjects(benchmark::State& state) {
  std::string out;
  for (auto _ : state) {
    out.clear();
    json::Array list(out);
    for (int i = 0; i < 1000; ++i) {
      list.object().add("id", "t100001").add("count", i).add("ready", true);
    }
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(appendSmallObjects);

}  // namespace
}  // namespace quillpost
