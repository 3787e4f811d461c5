#include "model/markers.h"

#include "base/unicode.h"

namespace quillpost {

std::string_view cleanSummary(std::string_view text) {
  text = unicode::trim(text);
  while (text.starts_with(gistMarker)) {
    text.remove_prefix(gistMarker.size());
    text = unicode::trim(text);
  }
  return text;
}

}  // namespace quillpost
