#pragma once

// What reading and writing a descriptor have in common.

namespace quillpost {

/// Whether the call on `fd` that has just failed, as errno says, is worth another try. A descriptor
/// that a harness has made non-blocking is waited for, without a bound, until `event` (POLLIN or
/// POLLOUT) is there, so that a full pipe never costs a message.
bool mayTryAgain(int fd, short event);

}  // namespace quillpost
