#include "harness/paths.h"

#include "base/environment.h"
#include "base/text.h"

// The build names the places to this file alone, so that no other depends on where it is built.

namespace quillpost::testing {

std::string seatProgram() {
  const std::string built = QUILLPOST_BUILD_DIR "/quillpost-teamwork";
  return ProcessEnvironment().get("QUILLPOST_PROGRAM").value_or(built);
}

std::string boardProgram() { return QUILLPOST_BUILD_DIR "/quillpost-board"; }

std::string commandProgram() { return QUILLPOST_BUILD_DIR "/qp"; }

std::string sharedSeatProgram() { return QUILLPOST_BUILD_DIR "/tests/shared_seat"; }

bool isSeatStatic() { return QUILLPOST_STATIC != 0; }

std::string inSources(std::string_view path) { return text::cat(QUILLPOST_SOURCE_DIR "/", path); }

std::string inTests(std::string_view path) { return inSources(text::cat("tests/", path)); }

}  // namespace quillpost::testing
