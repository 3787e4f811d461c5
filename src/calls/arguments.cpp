#include "calls/arguments.h"

#include "base/text.h"
#include "json/numbers.h"

namespace quillpost {

std::optional<std::string> Arguments::text(std::string_view name) const {
  const std::optional<std::string_view> found = json::findText(object_, name);
  if (!found) return std::nullopt;
  return std::string(*found);
}

std::optional<bool> Arguments::flag(std::string_view name) const {
  const json::Tree* value = json::find(object_, name);
  const bool* flag = value != nullptr ? value->if_bool() : nullptr;
  return flag != nullptr ? std::optional(*flag) : std::nullopt;
}

std::optional<int64_t> Arguments::integer(std::string_view name) const {
  const json::Tree* value = json::find(object_, name);
  if (value == nullptr) return std::nullopt;
  if (const int64_t* number = value->if_int64()) return *number;
  if (const double* number = value->if_double()) return json::truncated(*number);
  // An unsigned number is one above the signed range: absent, as the texts below would be.
  const std::optional<std::string_view> digits = json::findText(object_, name);
  return digits ? text::parseInteger(*digits) : std::nullopt;
}

std::optional<std::vector<std::string>> Arguments::texts(std::string_view name) const {
  const json::Tree* value = json::find(object_, name);
  const boost::json::array* list = value != nullptr ? value->if_array() : nullptr;
  if (list == nullptr) return std::nullopt;
  std::vector<std::string> texts;
  for (const json::Tree& element : *list)
    if (const boost::json::string* text = element.if_string())
      texts.emplace_back(text->data(), text->size());
  return texts;
}

}  // namespace quillpost
