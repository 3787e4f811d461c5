#include "qp/memory.h"

#include "base/files.h"
#include "base/text.h"
#include "json/decoder.h"
#include "json/record.h"

#include <algorithm>
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

/// Takes what the command has learnt anew, and leaves alone what it only remembered.
template <class Value>
void learn(Value& kept, const Value& before, const Value& after) {
  if (after != before) kept = after;
}

/// Whether the answers of this command came from a board that had gone back behind what was known
/// when it was asked.
bool hasGoneBack(const Lesson& lesson) {
  return lesson.after.state.lastSeenRev < lesson.before.state.lastSeenRev;
}

void learnRevision(SeatMemory& kept, const Lesson& lesson) {
  const SeatState& after = lesson.after.state;
  if (!after.hasCursor) return;
  const bool isOtherBoard =
      !lesson.after.threadTag.empty() && lesson.after.threadTag != kept.threadTag;
  const bool isNoticedFirst =
      hasGoneBack(lesson) && kept.state.lastSeenRev >= lesson.before.state.lastSeenRev;
  if (isOtherBoard || isNoticedFirst || !kept.state.hasCursor) {
    kept.state.lastSeenRev = after.lastSeenRev;
  } else {
    kept.state.lastSeenRev = std::max(kept.state.lastSeenRev, after.lastSeenRev);
  }
  kept.state.hasCursor = true;
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
  SeatMemory memory;
  memory.threadTag = std::move(record->thread);
  SeatState& state = memory.state;
  state.lastSeenRev = record->rev;
  state.hasCursor = record->hasCursor;
  state.waitSeq = record->waits;
  state.selfFingerprint = std::move(record->fingerprint);
  state.selfHandle = std::move(record->handle);
  state.lastObligations = std::move(record->obligations);
  state.lastAudience = record->audience;
  return memory;
}

SeatMemory merged(SeatMemory kept, const Lesson& lesson) {
  const SeatState& before = lesson.before.state;
  const SeatState& after = lesson.after.state;
  learnRevision(kept, lesson);
  if (!lesson.after.threadTag.empty()) kept.threadTag = lesson.after.threadTag;
  learn(kept.state.selfFingerprint, before.selfFingerprint, after.selfFingerprint);
  learn(kept.state.selfHandle, before.selfHandle, after.selfHandle);
  learn(kept.state.lastObligations, before.lastObligations, after.lastObligations);
  learn(kept.state.lastAudience, before.lastAudience, after.lastAudience);
  const int64_t waits = text::saturatingSubtract(after.waitSeq, before.waitSeq);
  kept.state.waitSeq = text::saturatingAdd(kept.state.waitSeq, std::max(waits, int64_t{0}));
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
