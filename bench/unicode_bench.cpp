#include "base/unicode.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillpost {
namespace {

constexpr std::string_view ascii = "The parser keeps its cursor while the board moves on. ";
constexpr std::string_view mixed = "Übergröße — “naïve” cursor moves on, and the board too 🚀. ";
constexpr std::string_view families = "👩‍👩‍👧‍👦🇫🇷e\u0301";

std::string repeated(std::string_view piece, std::size_t bytes) {
  std::string whole;
  while (whole.size() < bytes) whole += piece;
  return whole;
}

template <class Function>
void run(benchmark::State& state, std::string_view piece, Function function) {
  const std::string whole = repeated(piece, 4096);
  for (auto _ : state) benchmark::DoNotOptimize(function(whole));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(whole.size()));
}

void cutAt2000(benchmark::State& state, std::string_view piece) {
  run(state, piece, [](std::string_view whole) { return unicode::firstCharacters(whole, 2000); });
}
BENCHMARK_CAPTURE(cutAt2000, ascii, ascii);
BENCHMARK_CAPTURE(cutAt2000, mixed, mixed);
BENCHMARK_CAPTURE(cutAt2000, families, families);

void count(benchmark::State& state, std::string_view piece) {
  run(state, piece, unicode::countCharacters);
}
BENCHMARK_CAPTURE(count, ascii, ascii);
BENCHMARK_CAPTURE(count, mixed, mixed);
BENCHMARK_CAPTURE(count, families, families);

void validate(benchmark::State& state, std::string_view piece) {
  run(state, piece, unicode::isValid);
}
BENCHMARK_CAPTURE(validate, ascii, ascii);
BENCHMARK_CAPTURE(validate, mixed, mixed);

}  // namespace
}  // namespace quillpost
