#include "platform/values/log.h"

#include <cstdio>
#include <mutex>

namespace paintdoc {

namespace {

std::mutex& LogMutex() {
  static std::mutex mutex;
  return mutex;
}

LogCapture*& ActiveCapture() {
  static LogCapture* capture = nullptr;
  return capture;
}

}  // namespace

void Log(std::string_view message) {
  std::lock_guard lock(LogMutex());
  if (LogCapture* capture = ActiveCapture()) {
    capture->messages_.emplace_back(message);
    return;
  }
  std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
}

LogCapture::LogCapture() {
  std::lock_guard lock(LogMutex());
  previous_ = ActiveCapture();
  ActiveCapture() = this;
}

LogCapture::~LogCapture() {
  std::lock_guard lock(LogMutex());
  ActiveCapture() = previous_;
}

std::vector<std::string> LogCapture::messages() const {
  std::lock_guard lock(LogMutex());
  return messages_;
}

bool LogCapture::contains(std::string_view fragment) const {
  std::lock_guard lock(LogMutex());
  for (const std::string& m : messages_) {
    if (m.find(fragment) != std::string::npos) return true;
  }
  return false;
}

void LogCapture::clear() {
  std::lock_guard lock(LogMutex());
  messages_.clear();
}

}  // namespace paintdoc
