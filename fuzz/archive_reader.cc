// libFuzzer target: property-list reading and keyed unarchiving of arbitrary
// bytes. Every value of the archive is decoded, including objects of the model
// test class, so that the platform forms' readers run on malformed input too.
// Seed corpus: fuzz/corpus/archive (the archive fixtures).
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "archive/property_list.h"
#include "platform/values/log.h"

namespace {

using namespace paintdoc;

// A model class whose decoding asks for every kind of value.
class FuzzNode : public Codable {
 public:
  std::string className() const override { return "TestNode"; }
  void encodeWithCoder(KeyedArchiver& coder) const override {
    coder.encodeObjectArrayForKey({}, "Children");
  }
  bool initWithCoder(KeyedUnarchiver& coder) override {
    children_ = coder.decodeArrayOfObjectsForKey<FuzzNode>("Children");
    partner_ = coder.decodeObjectForKey<FuzzNode>("Partner");
    for (const std::string& key : coder.allKeys()) {
      coder.decodeBoolForKey(key);
      coder.decodeDoubleForKey(key);
      coder.decodeRectForKey(key);
      coder.decodeBitmapForKey(key);
      coder.decodeValueForKey(key);
    }
    return true;
  }

 private:
  std::vector<std::shared_ptr<FuzzNode>> children_;
  std::shared_ptr<FuzzNode> partner_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool registered = [] {
    ClassRegistry::shared().registerClass(
        {"TestNode", "", [] { return std::make_shared<FuzzNode>(); }});
    ClassRegistry::shared().registerClass(
        {"TestLeaf", "TestNode", [] { return std::make_shared<FuzzNode>(); }});
    return true;
  }();
  (void)registered;
  LogCapture quiet;  // warnings about the input are expected

  const SharedBytes bytes = SharedBytes::copyOf({data, size});
  // Small limits keep each run quick; they are exercised as well.
  ArchiveLimits limits;
  limits.maxObjects = 1 << 16;
  limits.maxDepth = 64;
  if (auto plist = PropertyList::read(bytes, limits)) {
    // Whatever reads must write and read back.
    const std::vector<uint8_t> written = WriteBinaryPlist(*plist);
    if (!PropertyList::read(SharedBytes(written), limits)) __builtin_trap();
  }

  KeyedUnarchiver coder(bytes, limits);
  if (!coder.isValid()) return 0;
  KeyedArchiver rewrite;
  for (const std::string& key : coder.allKeys()) {
    coder.decodeInt64ForKey(key);
    coder.decodePointForKey(key);
    coder.decodeBytesForKey(key);
    coder.decodeObjectForKey(key);
    rewrite.encodeValueForKey(coder.decodeValueForKey(key), key);
  }
  // What decoded must archive again into a readable archive.
  KeyedUnarchiver back{SharedBytes(rewrite.finishEncoding())};
  if (!back.isValid()) __builtin_trap();
  return 0;
}
