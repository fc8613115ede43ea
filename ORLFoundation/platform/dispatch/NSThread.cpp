
#include <ORLFoundation/platform/dispatch/NSThread.h>

#include <ORLFoundation/platform/dispatch/internal/MainThread.h>
#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace ORLFoundation {
namespace {

constexpr int kMostFrames = 129;  // One of them is callStackSymbols itself.

/// Holds the thread's object as long as the thread runs.
struct ThreadSlot {
  ThreadSlot() = default;
  ~ThreadSlot();
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  std::shared_ptr<NSThread> thread;
};

// Outlives the slot, so that what runs after it can tell.
thread_local bool slotHasEnded = false;
thread_local ThreadSlot slot;

ThreadSlot::~ThreadSlot() { slotHasEnded = true; }

std::string readableName(const char* symbol) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> name(
      abi::__cxa_demangle(symbol, nullptr, nullptr, &status), &std::free);
  return status == 0 && name ? name.get() : symbol;
}

std::string frameLine(std::size_t index, void* address) {
  Dl_info info{};
  // One byte back: a return address may already belong to the next function.
  const bool isKnown = ::dladdr(static_cast<char*>(address) - 1, &info) != 0;
  std::string_view module = isKnown && info.dli_fname != nullptr ? info.dli_fname : "???";
  module.remove_prefix(module.rfind('/') + 1);
  const bool hasName = isKnown && info.dli_sname != nullptr;
  const auto place = reinterpret_cast<std::uintptr_t>(address);
  const auto start = hasName ? reinterpret_cast<std::uintptr_t>(info.dli_saddr) : place;
  std::array<char, 64> numbers{};
  std::snprintf(numbers.data(), numbers.size(), "0x%016zx", static_cast<std::size_t>(place));
  std::string line = std::to_string(index);
  line.resize(std::max<std::size_t>(line.size(), 3) + 1, ' ');
  line.append(module).append(module.size() < 35 ? 36 - module.size() : 1, ' ');
  line.append(numbers.data()).append(" ");
  line += hasName ? readableName(info.dli_sname) : "0x0";
  return line + " + " + std::to_string(place - start);
}

}  // namespace

NSThread::NSThread() : dictionary_(std::make_shared<NSMutableDictionary>()) {}

std::shared_ptr<NSThread> NSThread::currentThread() {
  if (slotHasEnded) return std::make_shared<NSThread>();
  if (!slot.thread) slot.thread = std::make_shared<NSThread>();
  return slot.thread;
}

bool NSThread::isMainThread() { return internal::dispatch::isMainThread(); }

[[gnu::noinline]] std::vector<std::string> NSThread::callStackSymbols() {
  std::array<void*, kMostFrames> frames{};
  const int count = ::backtrace(frames.data(), kMostFrames);
  std::vector<std::string> lines;
  for (int i = 1; i < count; ++i)
    lines.push_back(frameLine(lines.size(), frames.at(static_cast<std::size_t>(i))));
  return lines;
}

}  // namespace ORLFoundation
