#include <tests/support/AllocationCount.h>

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

std::atomic<std::size_t> count{0};
std::atomic<std::size_t> bytes{0};
/// How many allocations are to succeed yet.
constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> remaining{kUnlimited};

bool isAllowed() noexcept {
  std::size_t left = remaining;
  while (left != kUnlimited && left != 0 && !remaining.compare_exchange_weak(left, left - 1)) {
  }
  return left != 0;
}

void* tried(std::size_t size) noexcept {
  ++count;
  bytes += size;
  if (!isAllowed()) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

void* counted(std::size_t size) {
  if (void* memory = tried(size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return counted(size); }
void* operator new[](std::size_t size) { return counted(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return tried(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return tried(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace orlftest {

std::size_t allocationCount() noexcept { return count; }
std::size_t allocatedBytes() noexcept { return bytes; }

FailingAllocations::FailingAllocations(std::size_t succeeding) noexcept { remaining = succeeding; }
FailingAllocations::~FailingAllocations() { remaining = kUnlimited; }

}  // namespace orlftest
