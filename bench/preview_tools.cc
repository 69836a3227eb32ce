// Whole-process timings of the tools a file manager and a user run:
// `paintdoc thumbnail` on a 2000 × 1500 document of ten layers and
// `paintdoc info` on a document of 10,000 layers, plus the in-process steps
// they are made of. The tool is found next to this program's build folder
// (../apps/paintdoc) or through PAINTDOC_TOOL.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/values/log.h"
#include "preview/bitmap_scaling.h"
#include "preview/document_container.h"
#include "preview/document_info.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"

extern char** environ;

namespace paintdoc {
namespace {

std::string ToolPath() {
  if (const char* tool = std::getenv("PAINTDOC_TOOL")) return tool;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
  return (self.parent_path().parent_path() / "apps" / "paintdoc").string();
}

std::string Scratch(const std::string& name) {
  return (std::filesystem::temp_directory_path() / ("paintdoc-bench-" + name)).string();
}

std::shared_ptr<DrawBase> Layer(int index, Rect bounds) {
  std::shared_ptr<DrawBase> draw;
  switch (index % 3) {
    case 0: {
      draw = MakeDraw<DrawRectangle>();
      draw->setBezierPathWithData(ArchiveValue(BezierPath::withRect(bounds)));
      break;
    }
    case 1: {
      draw = MakeDraw<DrawEllipse>();
      draw->setBezierPathWithData(ArchiveValue(BezierPath::withOvalInRect(bounds)));
      draw->setFillWithGradient(true);
      draw->setFillGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()));
      break;
    }
    default: {
      draw = MakeDraw<DrawLine>();
      BezierPath line;
      line.moveTo(bounds.origin);
      line.lineTo({bounds.maxX(), bounds.maxY()});
      draw->setBezierPathWithData(ArchiveValue(line));
    }
  }
  draw->setEnableFill(index % 3 != 2);
  draw->setFillColor(Color::calibratedRGB((index % 7) / 7.0, 0.5, 0.25));
  if (index % 4 == 0) {
    draw->setEnableShadow(true);
    draw->setShadow(DrawBase::defaultShadow());
  }
  draw->setLayerTitle("Layer " + std::to_string(index));
  return draw;
}

// Ten layers on a 2000 × 1500 canvas.
const std::string& TenLayerDocument() {
  static const std::string path = [] {
    RegisterAllClasses();
    auto canvas = PaintManager::withSize({2000, 1500});
    for (int i = 0; i < 10; ++i) {
      canvas->allDraws().push_back(Layer(i, MakeRect(100.0 * i, 80.0 * i, 600, 400)));
    }
    const std::string file = Scratch("ten-layers.paintdoc");
    WriteFileBytes(file, WriteDocumentContainer(*canvas));
    return file;
  }();
  return path;
}

// 10,000 layers: 9,000 at the top level and 1,000 inside 100 groups.
const std::string& TenThousandLayerDocument() {
  static const std::string path = [] {
    RegisterAllClasses();
    auto canvas = PaintManager::withSize({1024, 768});
    int index = 0;
    for (; index < 9000; ++index) {
      canvas->allDraws().push_back(Layer(index, MakeRect(index % 900, index % 700, 100, 60)));
    }
    for (int g = 0; g < 100; ++g) {
      auto group = MakeDraw<DrawGroup>();
      DrawList members;
      for (int m = 0; m < 10; ++m, ++index) members.push_back(Layer(index, MakeRect(m * 10, g, 50, 50)));
      group->setDraws(members);
      canvas->allDraws().push_back(group);
    }
    const std::string file = Scratch("ten-thousand-layers.paintdoc");
    WriteFileBytes(file, WriteDocumentContainer(*canvas));
    return file;
  }();
  return path;
}

// Runs the tool with output to /dev/null; fails the benchmark on a bad exit.
void RunTool(benchmark::State& state, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ToolPath());
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  int status = 0;
  if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0 ||
      waitpid(pid, &status, 0) < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    state.SkipWithError(("the tool failed: " + arguments[0]).c_str());
  }
  posix_spawn_file_actions_destroy(&actions);
}

void BM_ThumbnailProcess_2000x1500_TenLayers(benchmark::State& state) {
  const std::string input = TenLayerDocument();
  const std::string output = Scratch("thumbnail.png");
  for (auto _ : state) RunTool(state, {"thumbnail", input, output, "-s", "256"});
}
BENCHMARK(BM_ThumbnailProcess_2000x1500_TenLayers)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_InfoProcess_TenThousandLayers(benchmark::State& state) {
  const std::string input = TenThousandLayerDocument();
  for (auto _ : state) RunTool(state, {"info", input});
  state.counters["file_kB"] = std::filesystem::file_size(input) / 1024.0;
}
BENCHMARK(BM_InfoProcess_TenThousandLayers)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_InfoJsonProcess_TenThousandLayers(benchmark::State& state) {
  const std::string input = TenThousandLayerDocument();
  for (auto _ : state) RunTool(state, {"info", input, "--json"});
}
BENCHMARK(BM_InfoJsonProcess_TenThousandLayers)->Unit(benchmark::kMillisecond)->UseRealTime();

// --- the steps inside those processes

void BM_ReadDocument_TenThousandLayers(benchmark::State& state) {
  const std::string input = TenThousandLayerDocument();
  LogCapture quiet;
  for (auto _ : state) {
    PreviewSource source = ReadPreviewSource(input, PreviewKind::Preview);
    benchmark::DoNotOptimize(source.canvas);
  }
}
BENCHMARK(BM_ReadDocument_TenThousandLayers)->Unit(benchmark::kMillisecond);

void BM_DrawPreview_2000x1500(benchmark::State& state) {
  const PreviewSource source = ReadPreviewSource(TenLayerDocument(), PreviewKind::Thumbnail);
  for (auto _ : state) {
    BitmapPreviewRequest request;
    DrawPreviewSource(request, source);
    benchmark::DoNotOptimize(request.flushedContext());
  }
}
BENCHMARK(BM_DrawPreview_2000x1500)->Unit(benchmark::kMillisecond);

void BM_ScaleByArea_2000x1500_To256(benchmark::State& state) {
  auto source = Bitmap::create(2000, 1500);
  for (int y = 0; y < 1500; ++y)
    for (int x = 0; x < 2000; ++x)
      source->setPixelAt(x, y, Rgba8{uint8_t(x), uint8_t(y), uint8_t(x ^ y), 255});
  for (auto _ : state) benchmark::DoNotOptimize(ScaleBitmapByArea(*source, 256, 192));
}
BENCHMARK(BM_ScaleByArea_2000x1500_To256)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace paintdoc

BENCHMARK_MAIN();
