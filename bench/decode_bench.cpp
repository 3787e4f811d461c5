#include "bench/samples.h"
#include "model/coding.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace quillpost {
namespace {

void decode(benchmark::State& state, const std::string& reply) {
  for (auto _ : state) benchmark::DoNotOptimize(decodeResponse(reply));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(reply.size()));
}

void decodeBacklog(benchmark::State& state) {
  decode(state, bench::backlogReply(static_cast<std::size_t>(state.range(0))));
}
BENCHMARK(decodeBacklog)->ArgName("tasks")->Arg(10)->Arg(100)->Arg(1000)->Arg(10'000);

void decodeWritten(benchmark::State& state) { decode(state, bench::writtenReply()); }
BENCHMARK(decodeWritten);

void encodeCall(benchmark::State& state) {
  TeamworkRequest request;
  request.token = "a-token-of-some-length";
  request.sessionID = "a-session-of-some-length";
  request.method = "update_task";
  request.taskID = "t100001";
  request.note = "The parser keeps its cursor; tests cover both paths.";
  for (auto _ : state) benchmark::DoNotOptimize(encodeRequest(request));
}
BENCHMARK(encodeCall);

}  // namespace
}  // namespace quillpost
