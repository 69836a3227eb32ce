// Building blocks of archived objects for the writers of the platform's forms:
// start an object of a class, write its keys with the archiver's encode
// operations, finish it, and refer to it by UID.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_value.h"
#include "archive/keyed_archiver.h"

namespace paintdoc {

class ArchiveObjectWriter {
 public:
  explicit ArchiveObjectWriter(KeyedArchiver& coder) : coder_(coder) {}

  KeyedArchiver& coder() { return coder_; }
  // Starts an object of the class chain (most specific first, "NSObject"
  // last); keys encoded until finish() go into it. Answers its UID.
  uint64_t begin(std::vector<std::string> classChain);
  void finish();
  // A reference to an archived object under a key (UID 0 is the null reference).
  void encodeReference(uint64_t uid, std::string_view key);
  // An inline array of references under a key ("NS.objects").
  void encodeReferences(std::span<const uint64_t> uids, std::string_view key);
  // Archives a value as an object of its own and answers its UID: bare
  // strings, numbers and data, or an archived object; 0 for an absent value.
  uint64_t archive(const ArchiveValue& value);
  // A string stored inline under a key (not as an object of its own).
  void encodeInlineString(std::string_view text, std::string_view key);
  // A bare string object (equal strings share one object).
  uint64_t archiveString(std::string_view text);

 private:
  KeyedArchiver& coder_;
};

// The UID of the archived form of a value, written through `writer`.
uint64_t WriteValueObject(ArchiveObjectWriter& writer, const ArchiveValue& value);

}  // namespace paintdoc
