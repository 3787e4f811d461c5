#include "harness/paths.h"

#include "base/text.h"

// The build names the places to this file alone, so that no other depends on where it is built.

namespace quillpost::testing {

std::string seatProgram() { return QUILLPOST_BUILD_DIR "/quillpost-teamwork"; }

std::string boardProgram() { return QUILLPOST_BUILD_DIR "/quillpost-board"; }

std::string commandProgram() { return QUILLPOST_BUILD_DIR "/qp"; }

std::string inSources(std::string_view path) { return text::cat(QUILLPOST_SOURCE_DIR "/", path); }

std::string inTests(std::string_view path) { return inSources(text::cat("tests/", path)); }

}  // namespace quillpost::testing
