#include "contrib/ready_files.h"

#include "base/text.h"
#include "harness/paths.h"
#include "harness/temp_dir.h"

#include <optional>
#include <utility>

namespace quillpost::contrib {
namespace {

constexpr std::string_view shared = "/usr/local/share/quillpost-teamwork/";

std::string replaced(std::string whole, std::string_view old, std::string_view fresh) {
  for (std::size_t at = whole.find(old); at != std::string::npos;
       at = whole.find(old, at + fresh.size()))
    whole.replace(at, old.size(), fresh);
  return whole;
}

}  // namespace

std::string contribFile(std::string_view name) {
  return testing::readFile(testing::inSources(text::cat("contrib/", name)));
}

std::string here(std::string text) {
  return replaced(replaced(std::move(text), program, testing::seatProgram()), shared,
                  testing::inSources("contrib/"));
}

const json::Tree* at(const json::Tree& tree, const Path& path) {
  const json::Tree* here = &tree;
  for (const std::string_view step : path) {
    if (const auto* list = here->if_array()) {
      here = list->empty() ? nullptr : &list->front();
    } else if (const auto* object = here->if_object()) {
      here = json::find(*object, step);
    } else {
      here = nullptr;
    }
    if (here == nullptr) return nullptr;
  }
  return here;
}

std::string textAt(const std::string& source, const Path& path) {
  const std::optional<json::Tree> tree = json::parse(source);
  const json::Tree* found = tree ? at(*tree, path) : nullptr;
  const auto* words = found != nullptr ? found->if_string() : nullptr;
  return words != nullptr ? std::string(*words) : std::string();
}

Variables terminal(const std::string& socketPath) {
  return {{"HOME", "/nonexistent"},
          {"QUILLPOST_SESSION_ID", "S1"},
          {"QUILLPOST_COLLAB_TOKEN", "start"},
          {"QUILLPOST_COLLAB_SOCKET", socketPath},
          {"QUILLPOST_COLLAB_TOKEN_FILE", "/nonexistent/token"}};
}

}  // namespace quillpost::contrib
