// The archive of a plan of 50 segments, written and read: under 2 ms each. The peer reads and
// writes the same property list, without making objects of it.
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <benchmark/benchmark.h>
#include <plist/plist.h>
#include <tests/archives/WrittenArchives.h>

#include <cstdlib>
#include <string>

namespace {

using namespace ORLFoundation;

constexpr int kSegments = 50;

NSData archiveOfPlan() {
  return *NSKeyedArchiver::archivedDataWithRootObject(orlftest::planOfSegments(kSegments), true);
}

void WriteArchiveOfPlan(benchmark::State& state) {
  const id plan = orlftest::planOfSegments(kSegments);
  for (auto _ : state) {
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(plan, true);
    if (!data || data->length() < 5000) state.SkipWithError("no archive");
    benchmark::DoNotOptimize(data);
  }
}
BENCHMARK(WriteArchiveOfPlan)->Unit(benchmark::kMicrosecond);

void ReadArchiveOfPlan(benchmark::State& state) {
  const auto plan = orlftest::planOfSegments(kSegments);
  const NSData data = archiveOfPlan();
  for (auto _ : state) {
    const auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(data);
    benchmark::DoNotOptimize(back);
    state.PauseTiming();
    if (!back || !back->isEqualAmortizationPlan(plan.get())) state.SkipWithError("another plan");
    state.ResumeTiming();
  }
}
BENCHMARK(ReadArchiveOfPlan)->Unit(benchmark::kMicrosecond);

void PeerWritesPropertyList(benchmark::State& state) {
  const std::string bytes(archiveOfPlan().text());
  plist_t node = nullptr;
  plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
  for (auto _ : state) {
    char* written = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(node, &written, &length);
    if (length < 5000) state.SkipWithError("no list");
    std::free(written);
  }
  plist_free(node);
}
BENCHMARK(PeerWritesPropertyList)->Unit(benchmark::kMicrosecond);

void PeerReadsPropertyList(benchmark::State& state) {
  const std::string bytes(archiveOfPlan().text());
  for (auto _ : state) {
    plist_t node = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    if (node == nullptr) state.SkipWithError("no list");
    plist_free(node);
  }
}
BENCHMARK(PeerReadsPropertyList)->Unit(benchmark::kMicrosecond);

}  // namespace
