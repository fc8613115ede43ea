#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <ORLFoundation/interchange/tabular/ORLFScannerUtilities.h>
#include <benchmark/benchmark.h>
#include <csv.h>
#include <tests/support/CountedBytes.h>

#include <cstdint>
#include <memory>
#include <string>

namespace {

using namespace ORLFoundation;

constexpr std::uint64_t kRows = 100'000;
constexpr std::size_t kColumns = 6;

const std::string& statement() {
  static const std::string& text = *new std::string([] {
    std::string made;
    for (std::uint64_t row = 0; row < kRows; ++row)
      made += "2024-02-" + std::to_string(row % 28 + 1) + ",\"Grocery Store, Main Street\"," +
              std::to_string(row) + ".25,USD,,checking\n";
    return made;
  }());
  return text;
}

void readRows(benchmark::State& state) {
  for (auto _ : state) {
    std::uint64_t fields = 0;
    orlfEnumerateTabularRows(statement(), ',', [&fields](const ORLFTabularRow& row, bool&) {
      fields += row.fields.size();
    });
    if (fields != kRows * kColumns) state.SkipWithError("a wrong number of fields");
  }
  orlftest::countBytes(state, statement().size());
}

void keepRows(benchmark::State& state) {
  for (auto _ : state) {
    const auto scanner = NSScanner::scannerOverString(statement());
    if (csvRows(*scanner).size() != kRows) state.SkipWithError("a wrong number of rows");
  }
  orlftest::countBytes(state, statement().size());
}

void countField(void*, std::size_t, void* fields) { ++*static_cast<std::uint64_t*>(fields); }
void passRow(int, void*) {}

void readRowsByLibcsv(benchmark::State& state) {
  for (auto _ : state) {
    std::uint64_t fields = 0;
    csv_parser parser;
    csv_init(&parser, 0);
    csv_parse(&parser, statement().data(), statement().size(), countField, passRow, &fields);
    csv_fini(&parser, countField, passRow, &fields);
    csv_free(&parser);
    if (fields != kRows * kColumns) state.SkipWithError("a wrong number of fields");
  }
  orlftest::countBytes(state, statement().size());
}

BENCHMARK(readRows)->Name("row reader/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(readRowsByLibcsv)->Name("row reader/libcsv")->Unit(benchmark::kMillisecond);
BENCHMARK(keepRows)->Name("csvRows/ours")->Unit(benchmark::kMillisecond);

}  // namespace
