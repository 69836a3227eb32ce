// Small image files written in the tests, byte by byte or with the format's
// own library, for the codec tests.
#pragma once

#include <cstdio>  // jpeglib.h needs FILE and size_t declared first
#include <jpeglib.h>
#include <tiffio.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "support/test_paths.h"

namespace paintdoc::test {

inline void AppendU16(std::vector<uint8_t>& out, unsigned v) {
  out.push_back(static_cast<uint8_t>(v));
  out.push_back(static_cast<uint8_t>(v >> 8));
}
inline void AppendU32(std::vector<uint8_t>& out, uint32_t v) {
  for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

// The bytes of values as stored in memory (for TIFF samples).
template <typename T>
std::vector<uint8_t> Bytes(std::initializer_list<T> values) {
  std::vector<uint8_t> out(values.size() * sizeof(T));
  std::memcpy(out.data(), values.begin(), out.size());
  return out;
}

// A BMP with a 40-byte info header, or a 108-byte V4 header when masks are
// given, or `infoSize` bytes when set. A profile makes it a 124-byte V5
// header with the profile embedded after the pixels.
inline std::vector<uint8_t> MakeBmp(int32_t width, int32_t height, uint16_t bits,
                                    uint32_t compression, const std::vector<uint32_t>& palette,
                                    const std::vector<uint8_t>& pixels,
                                    const std::vector<uint32_t>& v4Masks = {},
                                    int32_t pixelsPerMetre = 0, uint32_t infoSize = 0,
                                    std::span<const uint8_t> profile = {}) {
  if (infoSize == 0) infoSize = !profile.empty() ? 124 : v4Masks.empty() ? 40 : 108;
  uint32_t offset = 14 + infoSize + static_cast<uint32_t>(palette.size() * 4);
  const auto size = static_cast<uint32_t>(pixels.size());
  const auto resolution = static_cast<uint32_t>(pixelsPerMetre);
  std::vector<uint8_t> out = {'B', 'M'};
  // File header: size, reserved, pixel offset; info header: its size, the dimensions.
  for (uint32_t v : {offset + size, 0u, offset, infoSize, static_cast<uint32_t>(width),
                     static_cast<uint32_t>(height)}) {
    AppendU32(out, v);
  }
  AppendU16(out, 1);  // planes
  AppendU16(out, bits);
  for (uint32_t v : {compression, size, resolution, resolution,
                     static_cast<uint32_t>(palette.size()), 0u}) {
    AppendU32(out, v);
  }
  for (uint32_t mask : v4Masks) AppendU32(out, mask);
  out.resize(14 + infoSize, 0);
  if (!profile.empty()) {
    // Colour space "MBED", then the profile's offset from the info header and its size.
    const uint32_t values[] = {0x4d424544, offset - 14 + size,
                               static_cast<uint32_t>(profile.size())};
    const size_t at[] = {14 + 56, 14 + 112, 14 + 116};
    for (int i = 0; i < 3; ++i) {
      std::vector<uint8_t> field;
      AppendU32(field, values[i]);
      std::copy(field.begin(), field.end(), out.begin() + static_cast<std::ptrdiff_t>(at[i]));
    }
  }
  for (uint32_t entry : palette) AppendU32(out, entry);  // 0x00RRGGBB as B, G, R, 0
  out.insert(out.end(), pixels.begin(), pixels.end());
  out.insert(out.end(), profile.begin(), profile.end());
  return out;
}

// What a TIFF written with libtiff holds. `samples` are the stored bytes in
// native order: whole rows, or for separate planes one plane after another.
struct TiffSpec {
  uint32_t width = 1, height = 1;
  uint16_t photometric = PHOTOMETRIC_RGB;
  uint16_t bitsPerSample = 8;
  uint16_t sampleFormat = SAMPLEFORMAT_UINT;
  uint16_t samplesPerPixel = 3;
  uint16_t planar = PLANARCONFIG_CONTIG;
  std::vector<uint16_t> extraSamples;
  std::vector<uint16_t> colormap;  // red, green, blue tables, for palette images
  uint16_t compression = COMPRESSION_NONE;
  uint16_t predictor = 0;      // 0: no Predictor tag
  uint32_t rowsPerStrip = 0;   // 0: one strip for the whole image
  bool bigEndian = false;      // "MM", as the platform writes, else native order
  float dotsPerInch = 0;       // 0: no resolution tags
  std::vector<uint8_t> samples;
  std::vector<uint8_t> iccProfile;
};

// The TIFF's bytes (written through a file, libtiff's simplest interface).
inline std::vector<uint8_t> MakeTiff(const TiffSpec& spec, const std::string& name) {
  std::string path = OutputPath("codecs/" + name + ".tiff");
  TIFF* file = TIFFOpen(path.c_str(), spec.bigEndian ? "wb" : "w");
  if (!file) return {};
  TIFFSetField(file, TIFFTAG_IMAGEWIDTH, spec.width);
  TIFFSetField(file, TIFFTAG_IMAGELENGTH, spec.height);
  TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, spec.bitsPerSample);
  TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, spec.sampleFormat);
  TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, spec.samplesPerPixel);
  TIFFSetField(file, TIFFTAG_PHOTOMETRIC, spec.photometric);
  TIFFSetField(file, TIFFTAG_PLANARCONFIG, spec.planar);
  TIFFSetField(file, TIFFTAG_COMPRESSION, spec.compression);
  TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, spec.rowsPerStrip ? spec.rowsPerStrip : spec.height);
  if (spec.predictor) TIFFSetField(file, TIFFTAG_PREDICTOR, spec.predictor);
  if (spec.dotsPerInch > 0) {
    TIFFSetField(file, TIFFTAG_XRESOLUTION, spec.dotsPerInch);
    TIFFSetField(file, TIFFTAG_YRESOLUTION, spec.dotsPerInch);
    TIFFSetField(file, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  }
  if (!spec.extraSamples.empty()) {
    TIFFSetField(file, TIFFTAG_EXTRASAMPLES, static_cast<uint16_t>(spec.extraSamples.size()),
                 spec.extraSamples.data());
  }
  if (!spec.colormap.empty()) {
    const size_t entries = spec.colormap.size() / 3;
    TIFFSetField(file, TIFFTAG_COLORMAP, spec.colormap.data(), spec.colormap.data() + entries,
                 spec.colormap.data() + 2 * entries);
  }
  if (!spec.iccProfile.empty()) {
    TIFFSetField(file, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(spec.iccProfile.size()),
                 spec.iccProfile.data());
  }
  const bool separate = spec.planar == PLANARCONFIG_SEPARATE;
  const size_t rowBytes = size_t{spec.width} * (separate ? 1 : spec.samplesPerPixel) *
                          (spec.bitsPerSample / 8 ? spec.bitsPerSample / 8 : 1);
  std::vector<uint8_t> row(rowBytes);
  const uint16_t planes = separate ? spec.samplesPerPixel : 1;
  for (uint16_t plane = 0; plane < planes; ++plane) {
    for (uint32_t y = 0; y < spec.height; ++y) {
      std::memcpy(row.data(), spec.samples.data() + (size_t{plane} * spec.height + y) * rowBytes,
                  rowBytes);
      TIFFWriteScanline(file, row.data(), y, plane);
    }
  }
  TIFFClose(file);
  return ReadFileBytes(path, uint64_t{1} << 24).value_or(std::vector<uint8_t>{});
}

// A JPEG from libjpeg itself: `color(x, row)` gives R, G, B; optionally an
// Exif block with an orientation, a JFIF density in dots an inch and an ICC profile.
inline std::vector<uint8_t> EncodeJpeg(int width, int height,
                                       const std::function<Rgba8(int, int)>& color,
                                       int exifOrientation = 0, int dotsPerInch = 0,
                                       std::span<const uint8_t> iccProfile = {}) {
  jpeg_compress_struct cinfo{};
  jpeg_error_mgr errors{};
  cinfo.err = jpeg_std_error(&errors);
  jpeg_create_compress(&cinfo);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&cinfo, &buffer, &size);
  cinfo.image_width = static_cast<JDIMENSION>(width);
  cinfo.image_height = static_cast<JDIMENSION>(height);
  cinfo.input_components = 3;
  cinfo.in_color_space = JCS_RGB;
  jpeg_set_defaults(&cinfo);
  jpeg_set_quality(&cinfo, 95, TRUE);
  if (dotsPerInch > 0) {
    cinfo.density_unit = 1;
    cinfo.X_density = cinfo.Y_density = static_cast<UINT16>(dotsPerInch);
  }
  jpeg_start_compress(&cinfo, TRUE);
  if (exifOrientation > 0) {
    // "Exif\0\0", little-endian TIFF header, one IFD entry: Orientation (SHORT).
    const uint8_t exif[] = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0,
                            1, 0, 0x12, 0x01, 3, 0, 1, 0, 0, 0,
                            static_cast<uint8_t>(exifOrientation), 0, 0, 0, 0, 0, 0, 0};
    jpeg_write_marker(&cinfo, JPEG_APP0 + 1, exif, sizeof exif);
  }
  if (!iccProfile.empty()) {
    jpeg_write_icc_profile(&cinfo, iccProfile.data(), static_cast<unsigned>(iccProfile.size()));
  }
  std::vector<uint8_t> line(static_cast<size_t>(width) * 3);
  while (cinfo.next_scanline < cinfo.image_height) {
    for (int x = 0; x < width; ++x) {
      Rgba8 c = color(x, static_cast<int>(cinfo.next_scanline));
      line[x * 3] = c.red;
      line[x * 3 + 1] = c.green;
      line[x * 3 + 2] = c.blue;
    }
    JSAMPROW rows[] = {line.data()};
    jpeg_write_scanlines(&cinfo, rows, 1);
  }
  jpeg_finish_compress(&cinfo);
  std::vector<uint8_t> jpeg(buffer, buffer + size);
  jpeg_destroy_compress(&cinfo);
  std::free(buffer);
  return jpeg;
}

}  // namespace paintdoc::test
