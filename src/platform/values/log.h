// The platform log call. Messages go to standard error, one a line; misuse of an
// operation is reported with a message that begins "Error: ". Tests capture the
// log with LogCapture.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace paintdoc {

void Log(std::string_view message);

// While alive, log messages of every thread are collected here instead of being
// printed. Captures nest; the innermost one receives the messages.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<std::string> messages() const;
  bool contains(std::string_view fragment) const;
  void clear();

 private:
  friend void Log(std::string_view message);
  LogCapture* previous_ = nullptr;
  std::vector<std::string> messages_;
};

}  // namespace paintdoc
