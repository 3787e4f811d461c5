#include "bench/samples.h"
#include "json/writer.h"
#include "render/briefing.h"
#include "render/discussion.h"
#include "render/obligations.h"
#include "render/pages.h"
#include "render/plan.h"
#include "render/registration.h"
#include "render/result.h"
#include "render/roster.h"
#include "render/squad.h"
#include "render/task.h"
#include "render/wait_outcome.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpost {
namespace {

/// Lets `add(object)` add the members of one object, again and again into the same text.
template <class Add>
void renderObject(benchmark::State& state, Add add) {
  std::string out;
  for (auto _ : state) {
    out.clear();
    {
      json::Object object(out);
      add(object);
    }
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(out.size()));
}

void briefing(benchmark::State& state) {
  const auto tasks = bench::backlog(static_cast<std::size_t>(state.range(0)));
  const BriefingView view = {.fingerprint = "#a3f1", .handle = "KQ3"};
  renderObject(state, [&](json::Object& out) { addBriefing(out, tasks, view); });
}
BENCHMARK(briefing)->ArgName("tasks")->Arg(10)->Arg(1000)->Arg(10'000);

void task(benchmark::State& state) {
  const auto tasks = bench::backlog(1);
  renderObject(state, [&](json::Object& out) { addTask(out, tasks.front()); });
}
BENCHMARK(task);

void bodyPage(benchmark::State& state) {
  std::string body;
  for (int line = 0; line < 2500; ++line) body += "The parser keeps its cursor — always.\n";
  for (auto _ : state) benchmark::DoNotOptimize(numberedBody(body, {}));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(body.size()));
}
BENCHMARK(bodyPage);

void logPage(benchmark::State& state) {
  const std::vector<std::string> log(1000, "One line of progress, of about a hundred characters.");
  std::string out;
  for (auto _ : state) {
    out.clear();
    json::Array lines(out);
    addLogPage(lines, log, {});
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(logPage);

void obligationsObject(benchmark::State& state) {
  const TeamworkObligations owed = bench::obligations();
  renderObject(state, [&](json::Object& out) { addObligations(out, owed, TeamworkAudience{}); });
}
BENCHMARK(obligationsObject);

void obligationsLine(benchmark::State& state) {
  const TeamworkObligations owed = bench::obligations();
  for (auto _ : state) benchmark::DoNotOptimize(summaryLine(owed));
}
BENCHMARK(obligationsLine);

void planWithDiscussions(benchmark::State& state) {
  const TeamworkPlan plan = bench::plan(5);
  renderObject(state, [&](json::Object& out) { addPlan(out, plan, {}); });
}
BENCHMARK(planWithDiscussions);

void discussion(benchmark::State& state) {
  const TeamworkPlan plan = bench::plan(1);
  renderObject(state, [&](json::Object& out) { addDiscussion(out, plan.discussions.front()); });
}
BENCHMARK(discussion);

void registration(benchmark::State& state) {
  const TeamworkResponse response = bench::roster(1);
  SeatState seat;
  seat.selfHandle = "KQ3";
  renderObject(state, [&](json::Object& out) { addRegistration(out, response.squad, seat); });
}
BENCHMARK(registration);

void squad(benchmark::State& state) {
  const TeamworkResponse response = bench::roster(1);
  renderObject(state, [&](json::Object& out) { addSquad(out, *response.squad); });
}
BENCHMARK(squad);

void compose(benchmark::State& state, const TeamworkResponse& response, std::string_view tool) {
  ResultRequest request;
  request.tool = tool;
  for (auto _ : state) benchmark::DoNotOptimize(composeResult(response, request, SeatState{}));
}

void agents(benchmark::State& state) { compose(state, bench::roster(20), "list_agents"); }
BENCHMARK(agents);

void backlogResult(benchmark::State& state) {
  TeamworkResponse response;
  response.kind = TeamworkResponseKind::tasks;
  response.tasks = bench::backlog(1000);
  compose(state, response, "list_tasks");
}
BENCHMARK(backlogResult);

void waitEnd(benchmark::State& state) {
  TeamworkChangeFeed feed;
  feed.rev = 5;
  feed.changed = true;
  feed.tasks = bench::backlog(5);
  feed.wakeReasons = {{"mention", "t100001", "You were mentioned.", std::nullopt}};
  SeatState seat;
  seat.waitSeq = 3;
  WaitOutcome outcome;
  outcome.feed = &feed;
  outcome.heldSeconds = 30;
  for (auto _ : state) benchmark::DoNotOptimize(waitOutcome(outcome, seat));
}
BENCHMARK(waitEnd);

}  // namespace
}  // namespace quillpost
