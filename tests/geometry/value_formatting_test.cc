// Measures, decimals, durations and file sizes at their rounding and unit
// thresholds.
#include "geometry/value_formatting.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/values/log.h"

namespace paintdoc {
namespace {

TEST(MeasureToString, UnitsConvertThroughInchesWithTheInterfaceFactor) {
  struct Case {
    unsigned unit;
    double width, height;  // LengthToString takes the width
    float resolution;
    std::optional<std::string> length, size;
  };
  const Case cases[] = {
      {0, 12.36, 480.9, 72, "Length:12.4 pixels", "w:12 h:480 (pixels)"},
      {4, -3.7, 1e12, 0, "Length:-3.7 pixels", "w:-3 h:2147483647 (pixels)"},
      {1, 144, 36, 72, "Length:2.00 inchs", "w:2.00 h:0.50 (inchs)"},
      {2, 300, 300, 300, "Length:2.54 cm", "w:2.54 h:2.54 (cm)"},
      // 100 inches: 253.97 with the interface's factor, 254.00 with 2.54.
      {2, 7200, 720, 72, "Length:253.97 cm", "w:253.97 h:25.40 (cm)"},
      {3, 720, 144, 72, "Length:253.97 mm", "w:253.97 h:50.79 (mm)"},
      {5, 1, 1, 72, std::nullopt, std::nullopt},
      {99, 1, 1, 72, std::nullopt, std::nullopt},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LengthToString(c.unit, static_cast<float>(c.width), c.resolution), c.length)
        << c.unit << " " << c.width;
    EXPECT_EQ(SizeToString(c.unit, c.width, c.height, c.resolution), c.size)
        << c.unit << " " << c.width;
  }
  // A resolution that cannot convert pixels is an error, not "inf".
  LogCapture log;
  EXPECT_EQ(LengthToString(2, 10, 0), std::nullopt);
  EXPECT_EQ(SizeToString(1, 10, 10, -72), std::nullopt);
  EXPECT_EQ(log.messages().size(), 2u);
  EXPECT_TRUE(log.contains("Error: LengthToString"));
}

TEST(DoubleToString, RoundsHalfUpThenTrimsOneZeroStep) {
  struct Case {
    double value;
    int decimals;
    const char* text;
  };
  const Case cases[] = {
      {3, 0, "3"},
      {1234.5, 0, "1235"},
      {-2.5, 0, "-2"},      // negatives: toward zero after adding 0.5
      {-1.25, 1, "-1.2"},
      {0.125, 2, "0.13"},   // half up, where printf would round to even
      {8.575, 2, "8.57"},   // the binary value lies below the half
      {1.005, 2, "1"},      // ... and "1.00" trims to "1"
      {-0.004, 2, "0"},
      {2, 2, "2"},          // ".00" goes
      {2, 1, "2"},          // ".0" goes
      {2.5, 2, "2.5"},      // one "0" goes
      {1.5, 3, "1.50"},     // ... and only one
      {20, 3, "20.00"},
      {10, 1, "10"},
      {7, -1, "7"},         // no negative decimals (logged)
  };
  LogCapture log;
  for (const Case& c : cases) {
    EXPECT_EQ(DoubleToString(c.value, c.decimals), c.text) << c.value << " " << c.decimals;
  }
  EXPECT_TRUE(log.contains("Error: DoubleToString"));
}

TEST(StringFromTime, WholeSecondsAsHoursMinutesSeconds) {
  struct Case {
    double seconds;
    const char* clock;
    const char* units;
  };
  const Case cases[] = {
      {0, "00:00:00", "00h00m00s"},
      {59.999, "00:00:59", "00h00m59s"},
      {3725.9, "01:02:05", "01h02m05s"},
      {90000, "25:00:00", "25h00m00s"},  // not limited to a day
      {360000, "100:00:00", "100h00m00s"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(StringFromTime(c.seconds), c.clock) << c.seconds;
    EXPECT_EQ(StringFromTime2(c.seconds), c.units) << c.seconds;
  }
}

TEST(StringFromFileSize, BinaryMultiplesAtTheirThresholds) {
  struct Case {
    uint64_t bytes;
    const char* text;
  };
  const Case cases[] = {
      {0, "0 B"},
      {1023, "1023 B"},
      {1024, "1.0 KB"},
      {1536, "1.5 KB"},
      {1048575, "1024.0 KB"},
      {1048576, "1.0 MB"},
      {1073741823, "1024.0 MB"},
      {1073741824, "1.0 GB"},
      {UINT64_MAX, "17179869184.0 GB"},
  };
  for (const Case& c : cases) EXPECT_EQ(StringFromFileSize(c.bytes), c.text) << c.bytes;
}

}  // namespace
}  // namespace paintdoc
