#include "platform/values/pixel_memory.h"

#include <utility>

namespace paintdoc {

namespace {

struct FailureRecord {
  uint64_t count = 0;
  std::string last;
};

FailureRecord& ThisThreadsRecord() {
  thread_local FailureRecord record;
  return record;
}

}  // namespace

void NotePixelMemoryFailure(std::string what) {
  FailureRecord& record = ThisThreadsRecord();
  ++record.count;
  record.last = std::move(what);
}

uint64_t PixelMemoryFailureCount() { return ThisThreadsRecord().count; }

const std::string& LastPixelMemoryFailure() { return ThisThreadsRecord().last; }

}  // namespace paintdoc
