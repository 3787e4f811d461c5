#pragma once

// A reply as it is printed: the words themselves, or their JSON alone.

#include "calls/tool_reply.h"
#include "qp/desk.h"
#include "qp/line.h"
#include "qp/status.h"

#include <string>
#include <string_view>

namespace quillpost {

/// What of a result goes to standard output and what to standard error. Each ends in a line feed or
/// is empty.
struct Printed {
  std::string output;
  std::string errors;
};

/// A result that is to be printed.
struct Result {
  const Call& call;
  const ToolReply& reply;
};

/// The reply to one verb: the very text that a client gets, or the JSON that it begins with (a text
/// is {"text":…}) and the rest as errors. A verb with JSON that failed gives only an error.
Printed printed(const Result& result);

/// An error for a program: {"error":…,"status":N}.
std::string errorLine(std::string_view error, Status status);

/// Prints it, with what peers wrote shown harmlessly on a person's terminal. False when nobody
/// reads any more.
bool print(const Console& console, const Printed& printed);

}  // namespace quillpost
