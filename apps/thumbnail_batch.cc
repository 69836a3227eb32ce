#include "thumbnail_batch.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "cli_commands.h"
#include "drawn_file.h"
#include "freedesktop_cache.h"
#include "platform/codecs/image_codecs.h"
#include "platform/values/file_bytes.h"
#include "platform/values/log.h"
#include "progress_bar.h"

namespace paintdoc::cli {

namespace {

// Level 1 with the Sub filter, not interlaced: a 256 x 192 thumbnail encodes
// in about a quarter of the time of zlib's default level 6 for a file about a
// quarter larger (bench_png_thumbnail_write), and a cache is written far more
// often than it is short of room.
constexpr PngWriteOptions kThumbnailPng{.compressionLevel = 1};

enum class Outcome { Written, Refused, NotWritten };

struct FileResult {
  Outcome outcome = Outcome::Written;
  std::vector<std::string> lines;  // one a failure, without the "paintdoc: "
};

// One file to thumbnail and where its thumbnail goes. A `clash` is known
// before drawing: the file's output name is already another file's.
struct Job {
  std::string input;
  std::string output;  // -o DIR only
  std::string clash;
};

struct Counts {
  size_t written = 0;
  size_t refused = 0;
  size_t notWritten = 0;
};

FileResult Refused(const std::string& line) { return {Outcome::Refused, {line}}; }
FileResult NotWritten(const std::string& line) { return {Outcome::NotWritten, {line}}; }

Result<std::vector<uint8_t>> EncodeThumbnail(const Bitmap& bitmap, const Drawn& drawn,
                                             std::vector<std::pair<std::string, std::string>> keys) {
  PngMetadata metadata;
  metadata.keepAlphaChannel = true;
  metadata.textEntries = std::move(keys);
  metadata.textEntries.push_back({"Thumb::Image::Width", std::to_string(drawn.fullSize.width)});
  metadata.textEntries.push_back({"Thumb::Image::Height", std::to_string(drawn.fullSize.height)});
  return WritePNG(bitmap, kThumbnailPng, metadata);
}

// -o DIR: the thumbnail as DIR/<input file name>.png.
FileResult ThumbnailIntoFolder(const Job& job, int size) {
  if (!job.clash.empty()) return NotWritten(job.input + ": " + job.clash);
  const Drawn drawn = DrawFile(job.input, PreviewKind::Thumbnail, size, nullptr);
  if (!drawn.bitmap) return Refused(drawn.failure);
  const Result<std::vector<uint8_t>> png = EncodeThumbnail(*drawn.bitmap, drawn, {});
  if (!png) return NotWritten(job.output + ": " + png.reason());
  if (const Status written = WriteFileBytes(job.output, *png); !written) {
    std::remove(job.output.c_str());
    return NotWritten("can't write " + written.reason());
  }
  return {};
}

// A refused file's entry under fail/: an empty picture that records which
// version of the file this program gave up on, so that file managers do not
// ask again until it changes.
FileResult RecordFailure(const std::string& cacheRoot, const CacheEntry& entry, FileResult refused) {
  const std::shared_ptr<Bitmap> empty = Bitmap::create(1, 1);
  PngMetadata metadata;
  metadata.keepAlphaChannel = true;
  metadata.textEntries = CacheKeys(entry);
  const Result<std::vector<uint8_t>> png =
      empty ? WritePNG(*empty, kThumbnailPng, metadata) : Failure{"no memory for a 1 x 1 bitmap"};
  std::string error = png.reason();
  const std::string folder = cacheRoot + "/fail/paintdoc-" PAINTDOC_VERSION;
  if (!png || !WriteCacheFile(folder, entry.fileName, *png, &error)) {
    refused.outcome = Outcome::NotWritten;
    refused.lines.push_back("fail entry not written: " + error);
  }
  return refused;
}

// --freedesktop: the thumbnail in the cache flavour that fits `size`.
FileResult ThumbnailIntoCache(const Job& job, const std::string& cacheRoot, const Flavour& flavour) {
  std::string error;
  const std::optional<CacheEntry> entry = DescribeForCache(job.input, &error);
  if (!entry) return Refused(error);
  if (entry->uri.starts_with(FileUri(cacheRoot + "/"))) {
    return Refused(job.input + ": inside the thumbnail cache");
  }
  const Drawn drawn = DrawFile(job.input, PreviewKind::Thumbnail, flavour.size, nullptr);
  if (!drawn.bitmap) {
    // An unreadable file gets no fail entry: it may become readable later.
    if (access(job.input.c_str(), R_OK) != 0) return Refused(drawn.failure);
    return RecordFailure(cacheRoot, *entry, Refused(drawn.failure));
  }
  const Result<std::vector<uint8_t>> png = EncodeThumbnail(*drawn.bitmap, drawn, CacheKeys(*entry));
  if (!png) return NotWritten(job.input + ": " + png.reason());
  if (!WriteCacheFile(cacheRoot + "/" + flavour.name, entry->fileName, *png, &error)) {
    return NotWritten(job.input + ": " + error);
  }
  return {};
}

// The jobs of -o DIR. Two inputs of the same file name would write the same
// output: the first one named keeps it, the others are reported.
std::vector<Job> FolderJobs(const std::vector<std::string>& files, const std::string& folder) {
  std::vector<Job> jobs;
  std::map<std::string, std::string> ownerOfOutput;
  for (const std::string& input : files) {
    Job job{input, folder + "/" + std::filesystem::path(input).filename().string() + ".png", ""};
    const auto [owner, isFirst] = ownerOfOutput.emplace(job.output, input);
    if (!isFirst) job.clash = "not written: " + job.output + " is the thumbnail of " + owner->second;
    jobs.push_back(std::move(job));
  }
  return jobs;
}

// Hands out the jobs to the workers and their results to the reporter.
class JobQueue {
 public:
  explicit JobQueue(size_t count) : count_(count) {}

  // The next job's index, or none when every job is taken.
  std::optional<size_t> take() {
    const size_t index = next_++;
    return index < count_ ? std::optional(index) : std::nullopt;
  }
  void finish(FileResult result) {
    std::lock_guard lock(mutex_);
    finished_.push_back(std::move(result));
    changed_.notify_one();
  }
  // The results that came in since the last call, waiting up to `timeout`.
  std::vector<FileResult> collect(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, timeout, [&] { return !finished_.empty(); });
    return std::exchange(finished_, {});
  }

 private:
  const size_t count_;
  std::atomic<size_t> next_{0};
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<FileResult> finished_;
};

// Every core draws its own documents: each thread has its own graphics
// context stack, and documents share nothing.
void RunWorkers(const std::vector<Job>& jobs, JobQueue& queue,
                const std::function<FileResult(const Job&)>& thumbnail) {
  std::vector<std::thread> workers;
  const size_t cores = std::max(1u, std::thread::hardware_concurrency());
  for (size_t i = 0; i < std::min(cores, jobs.size()); ++i) {
    workers.emplace_back([&] {
      while (const std::optional<size_t> index = queue.take()) {
        const Job& job = jobs[*index];
        try {
          queue.finish(thumbnail(job));
        } catch (const std::exception& failure) {
          queue.finish(Refused(job.input + ": " + failure.what()));
        }
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
}

int BatchExitStatus(const Counts& counts) {
  if (counts.notWritten > 0) return kExitOutputFailed;
  if (counts.refused > 0) return kExitRefused;
  return kExitSuccess;
}

}  // namespace

int RunThumbnailBatch(const std::vector<std::string>& files, const BatchOptions& options) {
  std::function<FileResult(const Job&)> thumbnail;
  std::vector<Job> jobs;
  const std::string cacheRoot = options.freedesktop ? ThumbnailCacheRoot() : "";
  if (options.freedesktop) {
    const std::optional<Flavour> flavour = FlavourForSize(options.size);
    if (cacheRoot.empty() || !flavour) {
      Complain(cacheRoot.empty() ? "thumbnail: neither XDG_CACHE_HOME nor HOME is set"
                                 : "thumbnail: --freedesktop sizes go up to 1024");
      return kExitUsage;
    }
    for (const std::string& input : files) jobs.push_back({input, "", ""});
    thumbnail = [&cacheRoot, flavour](const Job& job) { return ThumbnailIntoCache(job, cacheRoot, *flavour); };
  } else {
    std::error_code failure;
    std::filesystem::create_directories(options.outputFolder, failure);
    if (failure) {
      Complain("can't make " + options.outputFolder + ": " + failure.message());
      return kExitOutputFailed;
    }
    jobs = FolderJobs(files, options.outputFolder);
    thumbnail = [&options](const Job& job) { return ThumbnailIntoFolder(job, options.size); };
  }

  // What the library logs would mix with the bar and the failure lines; the
  // lines already carry each refusal's diagnosis.
  LogCapture libraryLog;
  const auto started = std::chrono::steady_clock::now();
  JobQueue queue(jobs.size());
  std::thread workers([&] { RunWorkers(jobs, queue, thumbnail); });

  ProgressBar bar(jobs.size());
  Counts counts;
  for (size_t reported = 0; reported < jobs.size();) {
    for (const FileResult& result : queue.collect(std::chrono::milliseconds(100))) {
      ++reported;
      if (result.outcome == Outcome::Written) ++counts.written;
      if (result.outcome == Outcome::Refused) ++counts.refused;
      if (result.outcome == Outcome::NotWritten) ++counts.notWritten;
      for (const std::string& line : result.lines) bar.printLine("paintdoc: " + line);
    }
    bar.update(reported);
    libraryLog.clear();
  }
  workers.join();
  bar.finish();

  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  std::printf("%zu thumbnails, %zu refused, %zu not written in %.1f s (%.0f files/s)\n", counts.written,
              counts.refused, counts.notWritten, seconds, seconds > 0 ? jobs.size() / seconds : 0.0);
  return BatchExitStatus(counts);
}

}  // namespace paintdoc::cli
