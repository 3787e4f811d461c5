#include "qp/memory.h"

#include "base/files.h"
#include "json/decoder.h"
#include "json/record.h"

#include <cstdint>
#include <tuple>
#include <utility>

namespace quillpost {
namespace {

constexpr int64_t currentVersion = 1;

/// The file's form.
struct MemoryRecord {
  int64_t version = currentVersion;
  std::string thread;
  int64_t rev = 0;
  bool hasCursor = false;
  int64_t waits = 0;
  std::optional<std::string> fingerprint;
  std::optional<std::string> handle;
  std::optional<TeamworkObligations> obligations;
  std::optional<TeamworkAudience> audience;

  static constexpr auto fields() {
    using Self = MemoryRecord;
    // clang-format off
    return std::tuple{
        json::required("version",     &Self::version),
        json::required("thread",      &Self::thread),
        json::required("rev",         &Self::rev),
        json::required("hasCursor",   &Self::hasCursor),
        json::required("waits",       &Self::waits),
        json::optional("fingerprint", &Self::fingerprint),
        json::optional("handle",      &Self::handle),
        json::optional("obligations", &Self::obligations),
        json::optional("audience",    &Self::audience),
    };
    // clang-format on
  }
};

MemoryRecord recordOf(const SeatMemory& memory) {
  const SeatState& state = memory.state;
  MemoryRecord record;
  record.thread = memory.threadTag;
  record.rev = state.lastSeenRev;
  record.hasCursor = state.hasCursor;
  record.waits = state.waitSeq;
  record.fingerprint = state.selfFingerprint;
  record.handle = state.selfHandle;
  record.obligations = state.lastObligations;
  record.audience = state.lastAudience;
  return record;
}

}  // namespace

std::string encodeMemory(const SeatMemory& memory) {
  MemoryRecord record = recordOf(memory);
  std::string text = json::encode(record);
  if (text.size() > files::smallFileLimit) {
    record.obligations.reset();
    text = json::encode(record);
  }
  return text;
}

std::optional<SeatMemory> decodeMemory(std::string text) {
  std::optional<MemoryRecord> record = json::decode<MemoryRecord>(std::move(text));
  if (!record || record->version != currentVersion) return std::nullopt;
  if (record->waits < 0) return std::nullopt;
  return SeatMemory{.state = {.lastSeenRev = record->rev,
                              .hasCursor = record->hasCursor,
                              .selfFingerprint = std::move(record->fingerprint),
                              .selfHandle = std::move(record->handle),
                              .lastObligations = std::move(record->obligations),
                              .lastAudience = record->audience,
                              .waitSeq = record->waits},
                    .threadTag = std::move(record->thread)};
}

SeatMemory merged(SeatMemory kept, const Lesson& lesson) {
  const std::string& thread = lesson.after.threadTag;
  absorbLesson(kept.state, {.before = lesson.before.state,
                            .after = lesson.after.state,
                            .isOfOtherBoard = !thread.empty() && thread != kept.threadTag});
  if (!thread.empty()) kept.threadTag = thread;
  return kept;
}

bool isSame(const SeatMemory& one, const SeatMemory& other) {
  const auto written = [](const SeatMemory& memory) {
    const SeatState& state = memory.state;
    return std::tie(memory.threadTag, state.lastSeenRev, state.hasCursor, state.waitSeq,
                    state.selfFingerprint, state.selfHandle, state.lastObligations,
                    state.lastAudience);
  };
  return written(one) == written(other);
}

}  // namespace quillpost
