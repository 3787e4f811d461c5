#pragma once

// A board of some size, the same at every run: what the benchmarks decode, render and send.

#include "model/response.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillpost::bench {

/// So many tasks as a busy Thread has them: half of them free, a quarter claimed, a quarter done,
/// briefs and logs of several lines, now and then a dash or a symbol beyond ASCII. About 1.1 KB of
/// JSON each.
std::vector<TeamworkTask> backlog(std::size_t count);

/// The app's answer to list_tasks, as the app writes it.
std::string backlogReply(std::size_t count);

/// The same with as many tasks as fit into `bytes`.
std::string backlogReplyOfAtMost(std::size_t bytes);

/// The app's answer to a write.
std::string writtenReply();

/// The app's answer to the stop hook: something is waiting.
std::string wakeReply();

/// A roster of so many agents with a squad and other Macs.
TeamworkResponse roster(std::size_t agents);

/// A plan with a goal of several lines and so many open discussions.
TeamworkPlan plan(std::size_t discussions);

/// Obligations with something in every list.
TeamworkObligations obligations();

}  // namespace quillpost::bench
