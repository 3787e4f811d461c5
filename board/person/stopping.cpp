#include "board/person/stopping.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace quillpost::board {

namespace {

/// Where the signal handler writes, since a handler can be given nothing.
int& stopWriter() {
  static int descriptor = -1;
  return descriptor;
}

extern "C" void stopServing(int) {
  const ssize_t ignored = ::write(stopWriter(), "", 1);
  static_cast<void>(ignored);
}

}  // namespace

UniqueFd catchSignals() {
  int ends[2];
  if (::pipe(ends) != 0) return {};
  UniqueFd reading(ends[0]);
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
  stopWriter() = ends[1];
  struct sigaction action {};
  action.sa_handler = stopServing;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
  return reading;
}

}  // namespace quillpost::board
