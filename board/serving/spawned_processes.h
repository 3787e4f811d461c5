#pragma once

// Processes as the system has them.

#include "board/serving/processes.h"

#include <set>
#include <string>

#include <sys/types.h>

namespace quillpost::board {

/// Starts real processes. On Linux a process is told to end when the board's has ended in whatever
/// way. Only one object of this kind may be there at a time, since a program has one handler for
/// its children's ends.
class SpawnedProcesses : public Processes {
 public:
  SpawnedProcesses();
  ~SpawnedProcesses() override;
  SpawnedProcesses(const SpawnedProcesses&) = delete;
  SpawnedProcesses& operator=(const SpawnedProcesses&) = delete;

  std::optional<Started> start(const Launch& launch, std::string& why) override;
  Sight look(const ProcessMark& mark) override;
  void signal(const ProcessMark& mark, int number) override;

  /// A descriptor that can be read when a process may have ended.
  int news() const { return reading_.get(); }

 private:
  UniqueFd reading_, writing_;
  /// Those that were killed, whose numbers are given back as soon as they have ended.
  std::set<pid_t> killed_;
};

/// When the process of this number began, in the system's own form and after which start of the
/// machine; empty when there is none.
std::string startOf(int64_t pid);

}  // namespace quillpost::board
