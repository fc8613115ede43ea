// The archive of a plan of 50 segments, written and read: under 2 ms each. The peer reads and
// writes the same property list, without making objects of it.
#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdlib>
#include <string>

namespace {

using namespace orlftest;

constexpr int kSegments = 50;

/// A month each, with terms that change from member to member.
Plan planOfFiftySegments() {
  std::vector<Stretch> stretches;
  for (int index = 0; index < kSegments; ++index) {
    const auto amount = NSDecimalNumber(NSDecimal::fromInteger(1000 + index));
    stretches.push_back({utc(2020, 1 + index, 1),
                         {.principal = number("-250000.75"),
                          .contribution = amount,
                          .rate = number("0.0525"),
                          .inflation = number("0.02")}});
  }
  return makePlan(stretches, utc(2040, 1, 1));
}

NSData archiveOfPlan() {
  return *NSKeyedArchiver::archivedDataWithRootObject(planOfFiftySegments(), true);
}

void WriteArchiveOfPlan(benchmark::State& state) {
  const id plan = planOfFiftySegments();
  for (auto _ : state) {
    const auto data = NSKeyedArchiver::archivedDataWithRootObject(plan, true);
    if (!data || data->length() < 5000) state.SkipWithError("no archive");
    benchmark::DoNotOptimize(data);
  }
}
BENCHMARK(WriteArchiveOfPlan)->Name("writeArchiveOfPlan/ours")->Unit(benchmark::kMicrosecond);

void ReadArchiveOfPlan(benchmark::State& state) {
  const auto plan = planOfFiftySegments();
  const NSData data = archiveOfPlan();
  for (auto _ : state) {
    const auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(data);
    benchmark::DoNotOptimize(back);
    state.PauseTiming();
    if (!back || !back->isEqualAmortizationPlan(plan.get())) state.SkipWithError("another plan");
    state.ResumeTiming();
  }
}
BENCHMARK(ReadArchiveOfPlan)->Name("readArchiveOfPlan/ours")->Unit(benchmark::kMicrosecond);

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
BENCHMARK(PeerWritesPropertyList)
    ->Name("writeArchiveOfPlan/libplist")
    ->Unit(benchmark::kMicrosecond);

void PeerReadsPropertyList(benchmark::State& state) {
  const std::string bytes(archiveOfPlan().text());
  for (auto _ : state) {
    plist_t node = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
    if (node == nullptr) state.SkipWithError("no list");
    plist_free(node);
  }
}
BENCHMARK(PeerReadsPropertyList)->Name("readArchiveOfPlan/libplist")->Unit(benchmark::kMicrosecond);

}  // namespace
