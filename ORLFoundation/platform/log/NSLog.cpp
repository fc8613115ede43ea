

#include <ORLFoundation/platform/log/NSLog.h>

#include <cstdio>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

struct Log {
  std::recursive_mutex lock;
  NSLogSink sink;
  bool inSink = false;
};

// Never destroyed: objects that log while the process ends still find it.
Log& sharedLog() {
  static Log& log = *new Log;
  return log;
}

void writeToStandardError(std::string_view message) {
  std::string line(message);
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
}

class SinkCall {
 public:
  explicit SinkCall(Log& log) : log_(log) { log_.inSink = true; }
  ~SinkCall() { log_.inSink = false; }
  SinkCall(const SinkCall&) = delete;
  SinkCall& operator=(const SinkCall&) = delete;

 private:
  Log& log_;
};

}  // namespace

void NSLog(std::string_view message) {
  Log& log = sharedLog();
  const std::lock_guard guard(log.lock);
  if (!log.sink || log.inSink) return writeToStandardError(message);
  const SinkCall call(log);
  const NSLogSink sink = log.sink;  // The sink may replace itself while it runs.
  sink(message);
}

NSLogSink NSSetLogSink(NSLogSink sink) {
  Log& log = sharedLog();
  const std::lock_guard guard(log.lock);
  return std::exchange(log.sink, std::move(sink));
}

}  // namespace ORLFoundation
