// Prints one reply of the app: sample_reply written | wake | tasks COUNT | bytes MOST

#include "bench/samples.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

std::string replyFor(std::string_view what, std::size_t size) {
  using namespace quillpost::bench;
  if (what == "written") return writtenReply();
  if (what == "wake") return wakeReply();
  if (what == "tasks") return backlogReply(size);
  return what == "bytes" ? backlogReplyOfAtMost(size) : std::string();
}

}  // namespace

int main(int count, char** arguments) {
  const std::size_t size = count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 0;
  const std::string reply = count > 1 ? replyFor(arguments[1], size) : std::string();
  if (reply.empty()) {
    std::fputs("usage: sample_reply written | wake | tasks COUNT | bytes MOST\n", stderr);
    return 2;
  }
  return std::fwrite(reply.data(), 1, reply.size(), stdout) == reply.size() ? 0 : 1;
}
