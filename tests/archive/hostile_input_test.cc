// Malformed and hostile property lists and archives: each gives a clear error
// (or reads as absent with a warning), never a crash, a hang or an allocation
// the file's size does not justify. The files are built byte by byte here, not
// with the library's writer.
#include <gtest/gtest.h>

#include <chrono>

#include "support/archive_test_support.h"
#include "archive/keyed_unarchiver.h"
#include "archive/property_list.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

using Bytes = std::vector<uint8_t>;

void Append(Bytes& out, uint64_t value, unsigned size) {
  for (unsigned i = size; i-- > 0;) {
    out.push_back(i < 8 ? static_cast<uint8_t>(value >> (8 * i)) : 0);
  }
}

// A binary property list from raw object bytes, with every trailer field
// open to tampering.
struct RawPlist {
  std::vector<Bytes> objects;
  unsigned offsetSize = 4;
  unsigned refSize = 4;
  uint64_t top = 0;
  std::optional<uint64_t> countOverride;
  std::optional<uint64_t> tableOverride;
  std::vector<std::pair<size_t, uint64_t>> offsetOverrides;

  Bytes build() const {
    Bytes out = {'b', 'p', 'l', 'i', 's', 't', '0', '0'};
    std::vector<uint64_t> offsets;
    for (const Bytes& o : objects) {
      offsets.push_back(out.size());
      out.insert(out.end(), o.begin(), o.end());
    }
    for (auto [index, offset] : offsetOverrides) offsets[index] = offset;
    const uint64_t table = out.size();
    for (uint64_t offset : offsets) Append(out, offset, offsetSize);
    out.insert(out.end(), 6, 0);
    out.push_back(static_cast<uint8_t>(offsetSize));
    out.push_back(static_cast<uint8_t>(refSize));
    Append(out, countOverride.value_or(objects.size()), 8);
    Append(out, top, 8);
    Append(out, tableOverride.value_or(table), 8);
    return out;
  }
};

// A container marker with a count, then 4-byte references.
Bytes Container(uint8_t type, std::vector<uint64_t> refs, std::optional<uint64_t> count = {}) {
  Bytes o;
  const uint64_t n = count.value_or(type == 0xD ? refs.size() / 2 : refs.size());
  if (n < 15) {
    o.push_back(static_cast<uint8_t>(type << 4 | n));
  } else {
    o.push_back(static_cast<uint8_t>(type << 4 | 0xF));
    o.push_back(0x13);
    Append(o, n, 8);
  }
  for (uint64_t r : refs) Append(o, r, 4);
  return o;
}

std::string ReadError(const Bytes& bytes, ArchiveLimits limits = {}) {
  auto plist = PropertyList::read(SharedBytes(Bytes(bytes)), limits);
  EXPECT_FALSE(plist) << "read a malformed file";
  return plist.reason();
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

Bytes Plist(std::vector<Bytes> objects, uint64_t top = 0) {
  RawPlist p;
  p.objects = std::move(objects);
  p.top = top;
  return p.build();
}

Bytes Text(const std::string& text) { return Bytes(text.begin(), text.end()); }

// An ASCII string object.
Bytes Str(const std::string& text) {
  Bytes o = {static_cast<uint8_t>(0x50 | std::min<size_t>(text.size(), 15))};
  if (text.size() >= 15) o.insert(o.end(), {0x10, static_cast<uint8_t>(text.size())});
  o.insert(o.end(), text.begin(), text.end());
  return o;
}

// A marker with a long count: the count follows as an 8-byte integer.
Bytes LongHeader(uint8_t marker, uint64_t count) {
  Bytes o = {marker, 0x13};
  Append(o, count, 8);
  return o;
}

TEST(HostilePlist, TrailerFieldsAreChecked) {
  RawPlist valid;
  valid.objects = {{0x10, 1}};
  EXPECT_TRUE(PropertyList::read(SharedBytes(valid.build()), {}));
  const std::pair<void (*)(RawPlist&), const char*> cases[] = {
      {[](RawPlist& p) { p.offsetSize = 9; }, "offset size 9"},
      {[](RawPlist& p) { p.refSize = 0; }, "reference size 0"},
      {[](RawPlist& p) { p.countOverride = 0; }, "no objects"},
      {[](RawPlist& p) { p.countOverride = uint64_t{1} << 40; }, "exceed the limit"},
      // An offset table of 4000 bytes in a 50-byte file.
      {[](RawPlist& p) { p.countOverride = 1000; }, "does not fit in the file"},
      {[](RawPlist& p) { p.top = 1; }, "top object 1 is not among"},
      {[](RawPlist& p) { p.tableOverride = uint64_t{1} << 62; }, "does not fit in the file"},
      {[](RawPlist& p) { p.refSize = p.offsetSize = 1, p.countOverride = 300; }, ""},
      {[](RawPlist& p) { p.offsetOverrides = {{0, 100000}}; }, "offset lies outside the object area"},
  };
  for (const auto& [tamper, message] : cases) {
    RawPlist p = valid;
    tamper(p);
    const std::string error = ReadError(p.build());
    EXPECT_FALSE(error.empty()) << message;
    EXPECT_TRUE(Contains(error, message)) << error;
  }
  EXPECT_TRUE(Contains(ReadError(Text("bplist00")), "too short"));
  Bytes wrongMagic = valid.build();
  wrongMagic[0] = 'x';
  EXPECT_FALSE(PropertyList::readBinary(SharedBytes(wrongMagic), {}));
}

// Every malformed object, binary or XML, is refused with its own reason,
// quickly, and before anything is allocated for counts that run past the
// end (UTF-16 counts are units, twice the bytes, without overflow).
TEST(HostilePlist, MalformedObjectsAreRefusedWithTheirReason) {
  Bytes wideInt = {0x14};
  Append(wideInt, 5, 8);
  Append(wideInt, 0, 8);
  constexpr uint64_t kDepth = 100000;
  std::vector<Bytes> deep;
  for (uint64_t i = 0; i + 1 < kDepth; ++i) deep.push_back(Container(0xA, {i + 1}));
  deep.push_back({0x09});
  std::string deepXml = "<plist>";
  for (uint64_t i = 0; i < kDepth; ++i) deepXml += "<array>";
  // 20,000 offset entries all pointing at one array of 20,000 references
  // would make 400 million table entries; the reader refuses the overlap.
  RawPlist overlap;
  overlap.objects = {Container(0xA, std::vector<uint64_t>(20000, 1)), {0x09}};
  overlap.objects.resize(20000);
  for (size_t i = 2; i < 20000; ++i) overlap.offsetOverrides.push_back({i, 8});
  ArchiveLimits few;
  few.maxObjects = 3;

  struct Case {
    Bytes bytes;
    const char* error;
    ArchiveLimits limits = {};
  };
  const Case cases[] = {
      {Plist({Container(0xA, {0, 0}, uint64_t{1} << 31)}), "array of 2147483648 entries runs past"},
      {Plist({Container(0xD, {}, uint64_t{1} << 40)}), "dictionary of 1099511627776 entries"},
      {Plist({LongHeader(0x4F, uint64_t{1} << 62)}), "data of 4611686018427387904 bytes runs past"},
      {Plist({LongHeader(0x6F, (uint64_t{1} << 63) - 1)}), "UTF-16 units runs past"},
      {Plist({LongHeader(0x5F, ~uint64_t{0})}), "negative count"},
      {Plist({Container(0xA, {7})}), "reference 7 is not among the 1 objects"},
      {Plist({{0x70}}), "unknown marker 0x70"},
      {Plist({{0x15, 0, 0}}), "integer of unsupported size"},
      {Plist({{0x23, 0, 0}}), "real runs past"},
      {Plist({wideInt}), "beyond 64 bits"},
      // Cycles: an array holding itself; dictionary → array → dictionary.
      {Plist({Container(0xA, {0})}), "object 0 contains itself"},
      {Plist({Container(0xD, {2, 1}), Container(0xA, {0}), Str("k")}), "contains itself"},
      {Plist(deep), "nest deeper than 512"},
      {Text(deepXml), "nest deeper than 512"},
      {overlap.build(), "objects overlap"},
      {Text("<plist><dict><key>a</key>"), "unexpected end"},
      {Text("<plist><string>a</plist>"), "not closed by its own tag"},
      {Text("<plist><frob/></plist>"), "unknown element <frob>"},
      {Text("<plist><integer>12x</integer></plist>"), "bad integer"},
      {Text("<plist><integer>-99999999999999999999</integer></plist>"), "bad integer"},
      {Text("<plist><real>1.2.3</real></plist>"), "bad real"},
      {Text("<plist><data>ab!d</data></plist>"), "bad base64"},
      {Text("<plist><date>yesterday</date></plist>"), "bad date"},
      {Text("<plist><string>&bogus;</string></plist>"), "unknown entity"},
      {Text("<plist><string>&#xD800;</string></plist>"), "bad character reference"},
      {Text("<plist><dict><string>v</string></dict></plist>"), "without a <key>"},
      {Text("<plist><true/><true/></plist>"), "more than one value"},
      {Text("hello"), "text outside an element"},
      {Text("<plist><dict><key>CF$UID</key><integer>-1</integer></dict></plist>"),
       "negative CF$UID"},
      {Text("<!-- never closed"), "unterminated markup"},
      {Text("<plist><array><true/><true/><true/><true/></array></plist>"), "more than 3 objects",
       few},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.error);
    const auto start = std::chrono::steady_clock::now();
    const std::string error = ReadError(c.bytes, c.limits);
    EXPECT_TRUE(Contains(error, c.error)) << error;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  }
  // Shared but acyclic is fine: one array referenced twice.
  EXPECT_TRUE(PropertyList::read(
      SharedBytes(Plist({Container(0xA, {1, 1}), Container(0xA, {2}), {0x09}})), {}));
}

// Each limit at one below, at and one above what the file needs: the fault
// hides at the boundary, where a ">" and a ">=" differ.
TEST(HostilePlist, DepthAndObjectLimitsHoldExactlyAtTheirBoundary) {
  // `levels` arrays each inside the next, as binary and as XML.
  auto nestedBinary = [](uint64_t levels) {
    RawPlist p;
    for (uint64_t i = 0; i + 1 < levels; ++i) p.objects.push_back(Container(0xA, {i + 1}));
    p.objects.push_back(Container(0xA, {}));
    return p.build();
  };
  auto nestedXml = [](size_t levels) {
    std::string xml = "<plist>";
    for (size_t i = 0; i < levels; ++i) xml += "<array>";
    for (size_t i = 0; i < levels; ++i) xml += "</array>";
    xml += "</plist>";
    return Bytes(xml.begin(), xml.end());
  };
  // An array of `count - 1` booleans: `count` objects.
  auto manyBinary = [](uint64_t count) {
    RawPlist p;
    std::vector<uint64_t> refs;
    for (uint64_t i = 1; i < count; ++i) refs.push_back(i);
    p.objects = {Container(0xA, refs)};
    p.objects.resize(count, Bytes{0x09});
    return p.build();
  };
  struct Case {
    const char* what;
    Bytes bytes;
    size_t ArchiveLimits::*limit;
    size_t needed;
  };
  const Case cases[] = {
      {"binary depth", nestedBinary(6), &ArchiveLimits::maxDepth, 6},
      {"XML depth", nestedXml(6), &ArchiveLimits::maxDepth, 6},
      {"binary objects", manyBinary(20), &ArchiveLimits::maxObjects, 20},
  };
  for (const Case& c : cases) {
    for (size_t limit : {c.needed - 1, c.needed, c.needed + 1}) {
      SCOPED_TRACE(std::string(c.what) + " limit " + std::to_string(limit));
      ArchiveLimits limits;
      limits.*c.limit = limit;
      const auto read = PropertyList::read(SharedBytes(Bytes(c.bytes)), limits);
      EXPECT_EQ(read.ok(), limit >= c.needed) << read.reason();
    }
  }
}

// A count whose payload ends exactly at the offset table is read; one unit
// more runs past the objects. Data, ASCII, UTF-16 (two bytes a unit) and an
// array (a 4-byte reference an element, to the boolean before it).
TEST(HostilePlist, LengthsThatEndAtOrPastTheObjects) {
  const std::tuple<const char*, uint8_t, Bytes> cases[] = {
      {"data", 0x4, {'a'}}, {"ASCII", 0x5, {'a'}}, {"UTF-16", 0x6, {0, 'a'}}, {"array", 0xA, {0, 0, 0, 0}}};
  constexpr unsigned kUnits = 6;
  for (const auto& [what, type, unit] : cases) {
    for (unsigned count : {kUnits - 1, kUnits, kUnits + 1}) {
      SCOPED_TRACE(std::string(what) + " of " + std::to_string(count));
      Bytes object = {static_cast<uint8_t>(type << 4 | count)};
      for (unsigned i = 0; i < kUnits; ++i) object.insert(object.end(), unit.begin(), unit.end());
      const auto read = PropertyList::read(SharedBytes(Plist({{0x09}, object}, 1)), {});
      EXPECT_EQ(read.ok(), count <= kUnits) << read.reason();
    }
  }
}

// --- archives

Bytes Uid(uint64_t uid) {
  return {0x83, static_cast<uint8_t>(uid >> 24), static_cast<uint8_t>(uid >> 16),
          static_cast<uint8_t>(uid >> 8), static_cast<uint8_t>(uid)};
}

// Objects 0–8 of a keyed archive: the root dictionary and its four keys,
// the version, the archiver's name, the top dictionary {@9: @10} and the
// "$objects" array of `entries`.
std::vector<Bytes> ArchiveHead(const std::vector<uint64_t>& entries) {
  return {Container(0xD, {1, 2, 3, 4, 5, 6, 7, 8}), Str("$version"), Str("$archiver"), Str("$top"),
          Str("$objects"), {0x12, 0x00, 0x01, 0x86, 0xA0}, Str("NSKeyedArchiver"),
          Container(0xD, {9, 10}), Container(0xA, entries)};
}

TEST(HostileArchive, ReferencesPastTheObjectsReadAsNil) {
  // Object 9 is the top key "root", 10 its UID 99, 11 the only entry "$null".
  std::vector<Bytes> objects = ArchiveHead({11});
  objects.insert(objects.end(), {Str("root"), Uid(99), Str("$null")});
  LogCapture log;
  KeyedUnarchiver coder{SharedBytes(Plist(objects))};
  ASSERT_TRUE(coder.isValid()) << coder.error();
  EXPECT_TRUE(coder.containsValueForKey("root"));
  EXPECT_FALSE(coder.decodeObjectForKey("root"));
  EXPECT_TRUE(log.contains("points past the archive's objects"));
}

// "$objects" entries of a chain of TestNodes, each the partner of the one
// before it: entry 1 is the class, entries 2.. the nodes; each node's
// dictionary is {"$class": @1, "Partner": @next}. The keys live in the plist
// objects after all entries, so this builds the whole file itself.
Bytes NodeChain(uint64_t length) {
  RawPlist p;
  // Fixed objects: 0 root, 1-4 root keys, 5 version, 6 archiver, 7 top, 8
  // objects array, 9 "root", 10 UID 2, 11 "$class", 12 "Partner", 13 class
  // description, 14 "$classname", 15 "$classes", 16 "TestNode", 17 classes
  // array, 18 "$null", 19 UID 1; then per node: its dictionary and the UID
  // of the next node.
  const uint64_t base = 20;
  std::vector<uint64_t> entryRefs = {18, 13};
  for (uint64_t i = 0; i < length; ++i) entryRefs.push_back(base + 2 * i);
  p.objects = ArchiveHead(entryRefs);
  p.objects.insert(p.objects.end(),
                   {Str("root"), Uid(2), Str("$class"), Str("Partner"), Container(0xD, {14, 15, 16, 17}),
                    Str("$classname"), Str("$classes"), Str("TestNode"), Container(0xA, {16}),
                    Str("$null"), Uid(1)});
  for (uint64_t i = 0; i < length; ++i) {
    const uint64_t next = base + 2 * i + 1;
    p.objects.push_back(Container(0xD, {11, 12, 19, next}));
    p.objects.push_back(Uid(i + 1 < length ? i + 3 : 0));
  }
  return p.build();
}

TEST(HostileArchive, ObjectNestingIsBounded) {
  test::RegisterTestClasses();
  // A chain as deep as the limit decodes whole; one object deeper does not.
  ArchiveLimits limits;
  limits.maxDepth = 10;
  for (int length : {9, 10, 11}) {
    SCOPED_TRACE(length);
    LogCapture quiet;
    KeyedUnarchiver coder{SharedBytes(NodeChain(length)), limits};
    ASSERT_TRUE(coder.isValid()) << coder.error();
    auto node = coder.decodeObjectForKey<test::TestNode>("root");
    int decoded = 0;
    for (; node; node = node->partner) ++decoded;
    EXPECT_EQ(coder.isValid(), length <= 10) << coder.error();
    EXPECT_EQ(decoded, length <= 10 ? length : decoded);
  }
  // 100,000 objects each inside the next: stopped at the depth limit with an
  // error, not a stack overflow.
  LogCapture log;
  KeyedUnarchiver coder{SharedBytes(NodeChain(100000))};
  ASSERT_TRUE(coder.isValid()) << coder.error();
  coder.decodeObjectForKey("root");
  EXPECT_FALSE(coder.isValid());
  EXPECT_TRUE(Contains(coder.error(), "objects nest deeper than 512")) << coder.error();
}

TEST(HostileArchive, SharedContainersCannotMultiplyTheWork) {
  // 60 NSArray-like plain arrays, each holding the next one twice: decoding
  // naively would visit 2^60 nodes. The work budget stops it quickly.
  RawPlist p;
  constexpr uint64_t kLevels = 60;
  p.objects = ArchiveHead({9});
  p.objects.push_back(Str("root"));
  for (uint64_t i = 0; i < kLevels; ++i) {
    const uint64_t self = 10 + i;
    p.objects.push_back(i + 1 < kLevels ? Container(0xA, {self + 1, self + 1}) : Bytes{0x09});
  }
  LogCapture log;
  KeyedUnarchiver coder{SharedBytes(p.build())};
  ASSERT_TRUE(coder.isValid()) << coder.error();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(coder.decodeValueForKey("root").isAbsent() || !coder.isValid());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_FALSE(coder.isValid());
  EXPECT_TRUE(Contains(coder.error(), "work limit")) << coder.error();
}

TEST(HostileArchive, EveryTruncationAndByteFlipOfAFixtureIsSafe) {
  test::RegisterTestClasses();
  LogCapture quiet;
  for (const char* name : {"text.plist", "graphics.plist", "objects.plist"}) {
    const Bytes original = test::ArchiveFixture(name).copy();
    auto exercise = [](const Bytes& bytes) {
      KeyedUnarchiver coder{SharedBytes(Bytes(bytes))};
      if (!coder.isValid()) {
        EXPECT_FALSE(coder.error().empty());
        return;
      }
      for (const std::string& key : coder.allKeys()) coder.decodeValueForKey(key);
    };
    for (size_t length = 0; length < original.size(); length += 7) {
      exercise(Bytes(original.begin(), original.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    // One change a byte, cycling through a low bit, the high bit and all bits.
    const uint8_t flips[] = {0x01, 0x80, 0xFF};
    for (size_t i = 0; i < original.size(); ++i) {
      Bytes changed = original;
      changed[i] ^= flips[i % 3];
      exercise(changed);
    }
  }
}

}  // namespace
}  // namespace paintdoc
