#include "board/serving/spawning.h"

#include <fcntl.h>
#include <unistd.h>

namespace quillpost::board {

UniqueFd aboveStandard(UniqueFd fd) {
  if (!fd) return fd;
  return UniqueFd(::fcntl(fd.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

Pipe::Pipe() {
  int ends[2];
  if (::pipe(ends) != 0) return;
  reading = aboveStandard(UniqueFd(ends[0]));
  writing = aboveStandard(UniqueFd(ends[1]));
}

void Gate::open() {
  if (!pipe_) return;
  // This end reads too, so that there is a reader and no signal when the process has ended.
  const ssize_t ignored = ::write(pipe_->writing.get(), "", 1);
  static_cast<void>(ignored);
  pipe_.reset();
}

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  // What is given them does not write there, though its type would let it.
  for (const std::string& text : texts)
    pointers.push_back(
        const_cast<char*>(text.c_str()));  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace quillpost::board
