// Reading documents: a 200 MB document that is mostly one embedded image, and
// a document of 100,000 small objects. Each is a container archive whose
// "PaintData" holds the inner archive, as documents are stored. After the
// benchmarks the same bytes are read with Python's plistlib
// (archive_read_python.py) for comparison.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/codecs/image_codecs.h"

namespace paintdoc {
namespace {

// A layer: a title, a few flags and geometry, a colour and a path, and
// optionally the bytes of an image.
class BenchLayer : public Codable {
 public:
  std::string className() const override { return "BenchLayer"; }
  void encodeWithCoder(KeyedArchiver& coder) const override {
    coder.encodeStringForKey(title, "LayerTitle");
    coder.encodeBoolForKey(visible, "Visible");
    coder.encodeFloatForKey(rotation, "RotateDegree");
    coder.encodeRectForKey(bounds, "Bounds");
    coder.encodeColorForKey(color, "ForeColor");
    coder.encodeBezierPathForKey(path, "BezierPath");
    if (!image.empty()) coder.encodeDataForKey(image.span(), "ImageData");
  }
  bool initWithCoder(KeyedUnarchiver& coder) override {
    title = coder.decodeStringForKey("LayerTitle").value_or("");
    visible = coder.containsValueForKey("Visible") ? coder.decodeBoolForKey("Visible") : true;
    rotation = coder.decodeFloatForKey("RotateDegree");
    bounds = coder.decodeRectForKey("Bounds");
    color = coder.decodeColorForKey("ForeColor").value_or(Color());
    path = coder.decodeBezierPathForKey("BezierPath").value_or(BezierPath());
    image = coder.decodeDataForKey("ImageData").value_or(SharedBytes());
    return true;
  }

  std::string title;
  bool visible = true;
  float rotation = 0;
  Rect bounds;
  Color color;
  BezierPath path;
  SharedBytes image;
};

class BenchCanvas : public Codable {
 public:
  std::string className() const override { return "BenchCanvas"; }
  void encodeWithCoder(KeyedArchiver& coder) const override {
    coder.encodeSizeForKey(size, "CanvasSize");
    coder.encodeArrayOfObjectsForKey(layers, "DrawsArray");
  }
  bool initWithCoder(KeyedUnarchiver& coder) override {
    size = coder.decodeSizeForKey("CanvasSize");
    layers = coder.decodeArrayOfObjectsForKey<BenchLayer>("DrawsArray");
    return true;
  }

  Size size;
  std::vector<std::shared_ptr<BenchLayer>> layers;
};

void RegisterBenchClasses() {
  ClassRegistry::shared().registerClass(
      {"BenchLayer", "", [] { return std::make_shared<BenchLayer>(); }});
  ClassRegistry::shared().registerClass(
      {"BenchCanvas", "", [] { return std::make_shared<BenchCanvas>(); }});
}

std::vector<uint8_t> Container(const BenchCanvas& canvas) {
  const std::vector<uint8_t> inner = KeyedArchiver::archivedDataWithRootObject(canvas);
  KeyedArchiver outer;
  outer.encodeDataForKey(inner, "PaintData");
  outer.encodeDoubleForKey(72, "Resolution");
  outer.encodeIntegerForKey(10, "Version");
  return outer.finishEncoding();
}

std::shared_ptr<BenchLayer> SmallLayer(int i) {
  auto layer = std::make_shared<BenchLayer>();
  layer->title = "Layer " + std::to_string(i);
  layer->visible = i % 7 != 0;
  layer->rotation = static_cast<float>(i % 360);
  layer->bounds = MakeRect(i % 1000, i / 1000, 20 + i % 13, 10 + i % 17);
  layer->color = Color::calibratedRGB((i % 255) / 255.0, 0.5, 0.25, 1);
  layer->path = BezierPath::withRect(layer->bounds);
  return layer;
}

// The image document: one layer holding an uncompressed RGBA TIFF of
// 7100 × 7100 pixels (about 200 MB).
const SharedBytes& LargeImageDocument() {
  static const SharedBytes document = [] {
    auto bitmap = Bitmap::create(7100, 7100);
    for (int row = 0; row < bitmap->pixelsHigh(); ++row) {
      std::memset(bitmap->rowAt(row), row & 0xFF, bitmap->bytesPerRow());
    }
    BenchCanvas canvas;
    canvas.size = {7100, 7100};
    auto layer = SmallLayer(0);
    layer->image = SharedBytes(WriteTIFF(*bitmap).value());
    canvas.layers.push_back(layer);
    return SharedBytes(Container(canvas));
  }();
  return document;
}

const SharedBytes& ManyObjectsDocument() {
  static const SharedBytes document = [] {
    BenchCanvas canvas;
    canvas.size = {1000, 1000};
    for (int i = 0; i < 100000; ++i) canvas.layers.push_back(SmallLayer(i));
    return SharedBytes(Container(canvas));
  }();
  return document;
}

// Opens the container, then the inner archive from a view of its bytes.
std::shared_ptr<BenchCanvas> ReadDocument(const SharedBytes& bytes) {
  KeyedUnarchiver outer(bytes);
  if (!outer.containsValueForKey("PaintData") || outer.decodeIntegerForKey("Version") > 10) {
    return nullptr;
  }
  auto inner = outer.decodeDataForKey("PaintData");
  return inner ? KeyedUnarchiver::unarchiveObjectWithData<BenchCanvas>(*inner).value_or(nullptr)
               : nullptr;
}

uint64_t Checksum(std::span<const uint8_t> bytes) {
  uint64_t sum = 0;
  size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    uint64_t word;
    std::memcpy(&word, bytes.data() + i, 8);
    sum += word;
  }
  for (; i < bytes.size(); ++i) sum += bytes[i];
  return sum;
}

void BM_TouchBytesOf200MBDocument(benchmark::State& state) {
  const SharedBytes& bytes = LargeImageDocument();
  for (auto _ : state) benchmark::DoNotOptimize(Checksum(bytes.span()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void BM_Read200MBImageDocument(benchmark::State& state) {
  RegisterBenchClasses();
  const SharedBytes& bytes = LargeImageDocument();
  for (auto _ : state) {
    auto canvas = ReadDocument(bytes);
    // The image's bytes, read through the decoded layer.
    benchmark::DoNotOptimize(Checksum(canvas->layers.at(0)->image.span()));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void BM_Read200MBImageDocumentAndDecodePixels(benchmark::State& state) {
  RegisterBenchClasses();
  const SharedBytes& bytes = LargeImageDocument();
  for (auto _ : state) {
    auto canvas = ReadDocument(bytes);
    auto image = ReadImage(canvas->layers.at(0)->image.span());
    benchmark::DoNotOptimize(image->bitmap->data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void BM_Read100000ObjectDocument(benchmark::State& state) {
  RegisterBenchClasses();
  const SharedBytes& bytes = ManyObjectsDocument();
  for (auto _ : state) {
    auto canvas = ReadDocument(bytes);
    if (canvas->layers.size() != 100000) state.SkipWithError("wrong layer count");
    benchmark::DoNotOptimize(canvas);
  }
  state.counters["layers/s"] = benchmark::Counter(100000.0 * state.iterations(),
                                                  benchmark::Counter::kIsRate);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

BENCHMARK(BM_TouchBytesOf200MBDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Read200MBImageDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Read200MBImageDocumentAndDecodePixels)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Read100000ObjectDocument)->Unit(benchmark::kMillisecond);

// Writes the documents and lets Python read the same bytes.
void RunPythonComparison() {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() / "paintdoc-bench";
  std::filesystem::create_directories(dir);
  const std::string image = (dir / "image_200mb.bplist").string();
  const std::string objects = (dir / "objects_100000.bplist").string();
  if (!WriteFileBytes(image, LargeImageDocument().span()) ||
      !WriteFileBytes(objects, ManyObjectsDocument().span())) {
    return;
  }
  const std::filesystem::path script =
      std::filesystem::path(__FILE__).parent_path() / "archive_read_python.py";
  const std::string command = "python3 '" + script.string() + "' '" + image + "' '" + objects + "'";
  if (std::system(command.c_str()) != 0) std::fprintf(stderr, "the Python comparison failed\n");
  std::filesystem::remove(image);
  std::filesystem::remove(objects);
}

}  // namespace
}  // namespace paintdoc

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  paintdoc::RunPythonComparison();
  return 0;
}
