#include "mcp/line_splitter.h"

namespace quillpost {

std::optional<std::string_view> LineSplitter::next() {
  dropDelivered();
  const std::size_t end = chunk_.find('\n');
  if (end == std::string_view::npos) {
    partial_.append(chunk_);
    chunk_ = {};
    return std::nullopt;
  }
  const std::string_view head = chunk_.substr(0, end);
  chunk_.remove_prefix(end + 1);
  if (partial_.empty()) return head;
  partial_.append(head);
  delivered_ = true;
  return partial_;
}

std::optional<std::string_view> LineSplitter::rest() {
  dropDelivered();
  if (partial_.empty()) return std::nullopt;
  delivered_ = true;
  return partial_;
}

void LineSplitter::dropDelivered() {
  if (!delivered_) return;
  delivered_ = false;
  if (partial_.capacity() > keptBytes) {
    std::string().swap(partial_);
  } else {
    partial_.clear();
  }
}

}  // namespace quillpost
