// What the root object costs those who do not use its services, and what the dictionary costs
// beside the standard library's table of the same entries.
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <unordered_map>

namespace ORLFoundation {
namespace {

class Counter : public NSObject {
 public:
  void setPlainly(NSInteger value) { value_ = value; }
  void set(NSInteger value) {
    changeValue("value", [&] { value_ = value; });
  }
  [[nodiscard]] NSInteger value() const { return value_; }

 private:
  NSInteger value_ = 0;
};

void setterWithoutNotices(benchmark::State& state) {
  const auto counter = std::make_shared<Counter>();
  for (auto _ : state) {
    counter->setPlainly(counter->value() + 1);
    benchmark::ClobberMemory();
  }
  if (counter->value() != static_cast<NSInteger>(state.iterations())) state.SkipWithError("wrong");
}
BENCHMARK(setterWithoutNotices)->Name("setterWithoutNotices/ours");

void setterThatNobodyObserves(benchmark::State& state) {
  const auto counter = std::make_shared<Counter>();
  for (auto _ : state) {
    counter->set(counter->value() + 1);
    benchmark::ClobberMemory();
  }
  if (counter->value() != static_cast<NSInteger>(state.iterations())) state.SkipWithError("wrong");
}
BENCHMARK(setterThatNobodyObserves)->Name("setterThatNobodyObserves/ours");

void attachedValueOfABareObject(benchmark::State& state) {
  const auto counter = std::make_shared<Counter>();
  for (auto _ : state) benchmark::DoNotOptimize(counter->attachedValue("ORLFDateNow"));
  if (counter->attachedValue("ORLFDateNow")) state.SkipWithError("something is attached");
}
BENCHMARK(attachedValueOfABareObject)->Name("attachedValueOfABareObject/ours");

constexpr int kEntries = 1000;

std::string keyOf(int i) { return "key" + std::to_string(i); }

void dictionaryLookups(benchmark::State& state) {
  NSMutableDictionary dictionary;
  std::vector<id> keys;
  for (int i = 0; i < kEntries; ++i) dictionary.setObject(i, keys.emplace_back(keyOf(i)));
  NSInteger sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const id& key : keys) sum += *dictionary.objectForKey(key).as<NSInteger>();
  }
  if (sum != kEntries * (kEntries - 1) / 2) state.SkipWithError("wrong sum");
  state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(dictionaryLookups)->Name("dictionaryLookups/ours");

void unorderedMapLookups(benchmark::State& state) {
  std::unordered_map<std::string, id> map;
  std::vector<std::string> keys;
  for (int i = 0; i < kEntries; ++i) map.emplace(keys.emplace_back(keyOf(i)), i);
  NSInteger sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const std::string& key : keys) sum += *map.find(key)->second.as<NSInteger>();
  }
  if (sum != kEntries * (kEntries - 1) / 2) state.SkipWithError("wrong sum");
  state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(unorderedMapLookups)->Name("dictionaryLookups/std");

void formattedText(benchmark::State& state) {
  std::string text;
  for (auto _ : state) {
    text = stringWithFormat("%@ has %ld members", "list", 42);
    benchmark::DoNotOptimize(text);
  }
  if (text != "list has 42 members") state.SkipWithError("wrong text");
}
BENCHMARK(formattedText)->Name("formattedText/ours");

void formattedTextByTheCLibrary(benchmark::State& state) {
  char text[64] = "";
  for (auto _ : state) {
    std::snprintf(text, sizeof text, "%s has %ld members", "list", 42L);
    benchmark::DoNotOptimize(text);
  }
  if (std::string_view(text) != "list has 42 members") state.SkipWithError("wrong text");
}
BENCHMARK(formattedTextByTheCLibrary)->Name("formattedText/libc");

}  // namespace
}  // namespace ORLFoundation
