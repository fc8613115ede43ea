

#include <ORLFoundation/platform/log/NSLog.h>

#include <ORLFoundation/platform/base/Replaceable.h>

#include <cstdio>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<NSLogSink> sinks;

/// One message at a time.
struct Log {
  std::recursive_mutex lock;
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
  const auto sink = sinks.current();  // The sink may replace itself while it runs.
  if (!sink || log.inSink) return writeToStandardError(message);
  const SinkCall call(log);
  (*sink)(message);
}

NSLogSink NSSetLogSink(NSLogSink sink) {
  const std::lock_guard guard(sharedLog().lock);
  return sinks.exchange(std::move(sink));
}

}  // namespace ORLFoundation
