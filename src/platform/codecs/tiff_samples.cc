#include "platform/codecs/tiff_samples.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace paintdoc {
namespace {

// The most one scanline buffer may take (a 32767-pixel row of 64-bit RGBA
// needs 1 MiB; more means samples we do not use).
constexpr uint64_t kMaxScanlineBytes = uint64_t{16} << 20;

// One stored sample, widened to a double (floating point) or a fraction of
// the full range (integers).
using SampleReader = double (*)(const uint8_t*);

double ReadHalf(const uint8_t* p) {
  uint16_t bits;
  std::memcpy(&bits, p, sizeof bits);
  const int exponent = (bits >> 10) & 0x1f;
  const int mantissa = bits & 0x3ff;
  double magnitude = exponent == 0    ? std::ldexp(mantissa, -24)  // subnormal
                     : exponent == 31 ? (mantissa ? NAN : INFINITY)
                                      : std::ldexp(1024 + mantissa, exponent - 25);
  return bits & 0x8000 ? -magnitude : magnitude;
}
double ReadFloat(const uint8_t* p) {
  float value;
  std::memcpy(&value, p, sizeof value);
  return value;
}
double ReadDouble(const uint8_t* p) {
  double value;
  std::memcpy(&value, p, sizeof value);
  return value;
}
double ReadUInt8(const uint8_t* p) { return *p / 255.0; }
double ReadUInt16(const uint8_t* p) {
  uint16_t value;
  std::memcpy(&value, p, sizeof value);
  return value / 65535.0;
}
double ReadUInt32(const uint8_t* p) {
  uint32_t value;
  std::memcpy(&value, p, sizeof value);
  return value / 4294967295.0;
}

// 0.0–1.0 to 0–255, clamped; NaN (which fails every comparison) gives 0.
uint8_t ToByte(double value) {
  if (!(value > 0)) return 0;
  if (value >= 1) return 255;
  return static_cast<uint8_t>(value * 255 + 0.5);
}

// How the samples of a pixel are stored and what each one is.
struct SampleLayout {
  SampleReader read = nullptr;
  size_t sampleBytes = 0;
  uint16_t samplesPerPixel = 0;
  uint16_t colourSamples = 0;  // 1 (grey) or 3 (RGB)
  bool inverted = false;       // grey with 0 as white
  bool separatePlanes = false;
  bool hasAlpha = false;
  bool associatedAlpha = false;
};

SampleReader ReaderFor(uint16_t format, uint16_t bits) {
  if (format == SAMPLEFORMAT_IEEEFP) {
    return bits == 16 ? ReadHalf : bits == 32 ? ReadFloat : bits == 64 ? ReadDouble : nullptr;
  }
  if (format != SAMPLEFORMAT_UINT) return nullptr;
  return bits == 8 ? ReadUInt8 : bits == 16 ? ReadUInt16 : bits == 32 ? ReadUInt32 : nullptr;
}

// Reads the layout's tags; the reason the layout cannot be read, else "".
std::string ReadLayout(TIFF* tiff, SampleLayout& layout) {
  uint16_t format = SAMPLEFORMAT_UINT, bits = 1, photometric = 0, planar = PLANARCONFIG_CONTIG;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &layout.samplesPerPixel);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
  const std::string kind = std::to_string(bits) + "-bit " +
                           (format == SAMPLEFORMAT_IEEEFP ? "floating-point" : "integer") +
                           " samples";
  layout.read = ReaderFor(format, bits);
  if (!layout.read) return "unsupported layout (" + kind + ")";
  layout.sampleBytes = bits / 8;
  if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric)) {
    return "unsupported layout (" + kind + " without a photometric interpretation)";
  }
  if (photometric == PHOTOMETRIC_RGB) {
    layout.colourSamples = 3;
  } else if (photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE) {
    layout.colourSamples = 1;
    layout.inverted = photometric == PHOTOMETRIC_MINISWHITE;
  } else {
    return "unsupported layout (" + kind + " with photometric interpretation " +
           std::to_string(photometric) + ")";
  }
  if (layout.samplesPerPixel < layout.colourSamples) {
    return "malformed data (" + std::to_string(layout.samplesPerPixel) + " samples a pixel)";
  }
  if (TIFFIsTiled(tiff)) return "unsupported layout (tiles of " + kind + ")";
  layout.separatePlanes = planar == PLANARCONFIG_SEPARATE;

  // The first extra sample is alpha when marked so; an unspecified one counts
  // as associated alpha beside RGB, as libtiff's RGBA interface reads it.
  uint16_t extraCount = 0;
  uint16_t* extraTypes = nullptr;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extraTypes);
  if (layout.samplesPerPixel > layout.colourSamples && extraCount > 0 && extraTypes) {
    const uint16_t type = extraTypes[0];
    layout.hasAlpha = type == EXTRASAMPLE_ASSOCALPHA || type == EXTRASAMPLE_UNASSALPHA ||
                      (type == EXTRASAMPLE_UNSPECIFIED && layout.samplesPerPixel > 3);
    layout.associatedAlpha = layout.hasAlpha && type != EXTRASAMPLE_UNASSALPHA;
  }
  return {};
}

// Puts sample number `sample` of a pixel, as a byte, into its R, G, B, A bytes.
void PlaceSample(const SampleLayout& layout, uint16_t sample, uint8_t value, uint8_t* rgba) {
  if (sample < layout.colourSamples) {
    if (layout.colourSamples == 3) {
      rgba[sample] = value;
    } else {
      rgba[0] = rgba[1] = rgba[2] = layout.inverted ? 255 - value : value;
    }
  } else if (sample == layout.colourSamples && layout.hasAlpha) {
    rgba[3] = value;
  }
}

}  // namespace

bool NeedsTiffSampleReader(TIFF* tiff) {
  uint16_t format = SAMPLEFORMAT_UINT, bits = 1, photometric = 0, samples = 1;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
  if (format == SAMPLEFORMAT_IEEEFP || (format == SAMPLEFORMAT_UINT && bits == 32)) return true;
  // Grey with an extra sample: the RGBA interface drops the alpha of 16-bit
  // samples and does not premultiply unassociated 8-bit alpha.
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
  const bool grey = TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) &&
                    (photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE);
  // (Tiles stay with the RGBA interface, which reads them.)
  return grey && samples > 1 && format == SAMPLEFORMAT_UINT && (bits == 8 || bits == 16) &&
         !TIFFIsTiled(tiff);
}

std::string ReadTiffSamples(TIFF* tiff, Bitmap& bitmap, const std::string& libraryError) {
  SampleLayout layout;
  std::string error = ReadLayout(tiff, layout);
  if (!error.empty()) return error;
  const auto width = static_cast<size_t>(bitmap.pixelsWide());
  // Contiguous: every sample of a pixel in one scanline. Separate: one plane
  // (one sample) a scanline, read plane after plane so that libtiff decodes
  // each strip once.
  const uint16_t planes = layout.separatePlanes ? layout.samplesPerPixel : 1;
  const uint16_t samplesInLine = layout.separatePlanes ? 1 : layout.samplesPerPixel;
  const uint64_t lineBytes = uint64_t{width} * samplesInLine * layout.sampleBytes;
  const uint64_t scanlineSize = static_cast<uint64_t>(TIFFScanlineSize64(tiff));
  if (scanlineSize < lineBytes || scanlineSize > kMaxScanlineBytes) {
    return "malformed data (scanlines of " + std::to_string(scanlineSize) + " bytes)";
  }
  std::vector<uint8_t> line(scanlineSize);
  // The bitmap's rows hold straight or associated R, G, B, A bytes until the end.
  for (uint16_t plane = 0; plane < planes; ++plane) {
    for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
      if (TIFFReadScanline(tiff, line.data(), static_cast<uint32_t>(row), plane) != 1) {
        return libraryError.empty() ? "could not decode the pixels"
                                    : "malformed data (" + libraryError + ")";
      }
      uint8_t* rgba = bitmap.rowAt(row);
      const uint8_t* stored = line.data();
      for (size_t x = 0; x < width; ++x, rgba += 4) {
        for (uint16_t s = 0; s < samplesInLine; ++s, stored += layout.sampleBytes) {
          PlaceSample(layout, layout.separatePlanes ? plane : s, ToByte(layout.read(stored)),
                      rgba);
        }
      }
    }
  }
  for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
    uint8_t* rgba = bitmap.rowAt(row);
    if (!layout.hasAlpha) {
      for (size_t x = 0; x < width; ++x) rgba[x * 4 + 3] = 255;
    }
    bitmap.writeRGBARow(row, rgba, layout.associatedAlpha ? AlphaMode::Premultiplied
                                                          : AlphaMode::Straight);
  }
  return {};
}

}  // namespace paintdoc
