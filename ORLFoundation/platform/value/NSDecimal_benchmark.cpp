// Decimals against their peers on the same operands: numbers the size of money, and numbers of 34
// to 38 digits. Every benchmark checks that all give the same results.
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>
#include <ORLFoundation/platform/value/NSDecimalSum.h>
#include <ORLFoundation/platform/value/NSDecimal_peers_testing.h>
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using namespace orlftest;

constexpr std::size_t kCount = 1024;
enum class Size { kMoney, kLong };

std::string randomText(std::mt19937_64& engine, Size size) {
  const auto between = [&](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(engine);
  };
  const int digits = size == Size::kMoney ? between(3, 9) : between(34, 38);
  std::string text(1, static_cast<char>('0' + between(1, 9)));
  for (int i = 1; i < digits; ++i) text += static_cast<char>('0' + between(0, 9));
  text.insert(text.size() - (size == Size::kMoney ? 2U : 17U), ".");
  return (between(0, 1) == 1 ? "-" : "") + text;
}

const std::vector<std::string>& texts(Size size, unsigned seed) {
  static std::array<std::vector<std::string>, 4> made;
  std::vector<std::string>& list = made.at(static_cast<std::size_t>(size) * 2 + seed);
  if (list.empty()) {
    std::mt19937_64 engine(seed + 1);
    for (std::size_t i = 0; i < kCount; ++i) list.push_back(randomText(engine, size));
  }
  return list;
}

struct Ours {
  using Number = NSDecimal;
  static Number parse(const std::string& text) { return NSDecimal::parse(text); }
  static Number add(const Number& a, const Number& b) { return NSDecimalAdd(a, b).value; }
  static Number multiply(const Number& a, const Number& b) { return NSDecimalMultiply(a, b).value; }
  static Number divide(const Number& a, const Number& b) { return NSDecimalDivide(a, b).value; }
  static Number round(const Number& a) { return NSDecimalRound(a, 2).value; }
  static bool less(const Number& a, const Number& b) { return a.compare(b) == NSOrderedAscending; }
  static std::string print(const Number& a) { return a.stringValue(); }
  static bool agrees(const NSDecimal& expected, const Number& actual) { return expected == actual; }
};

template <class Library>
std::vector<typename Library::Number> numbers(Size size, unsigned seed) {
  std::vector<typename Library::Number> list;
  for (const std::string& text : texts(size, seed)) list.push_back(Library::parse(text));
  return list;
}

/// Times an operation on pairs, then checks each result against that of ours.
template <class Library, class Operation, class Expected>
void runPairs(benchmark::State& state, Size size, Operation operation, Expected expected) {
  const auto left = numbers<Library>(size, 0);
  const auto right = numbers<Library>(size, 1);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kCount; ++i) {
      auto result = operation(left[i], right[i]);
      benchmark::DoNotOptimize(result);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  const auto ourLeft = numbers<Ours>(size, 0);
  const auto ourRight = numbers<Ours>(size, 1);
  for (std::size_t i = 0; i < kCount; ++i) {
    if (!Library::agrees(expected(ourLeft[i], ourRight[i]), operation(left[i], right[i])))
      return state.SkipWithError("a wrong result");
  }
}

template <class Library, Size size>
void add(benchmark::State& state) {
  runPairs<Library>(state, size, Library::add, Ours::add);
}
template <class Library, Size size>
void multiply(benchmark::State& state) {
  runPairs<Library>(state, size, Library::multiply, Ours::multiply);
}
template <class Library, Size size>
void divide(benchmark::State& state) {
  runPairs<Library>(state, size, Library::divide, Ours::divide);
}
template <class Library, Size size>
void roundToCents(benchmark::State& state) {
  // Of quotients, which have digits to drop.
  const auto left = numbers<Library>(size, 0);
  const auto right = numbers<Library>(size, 1);
  std::vector<typename Library::Number> values;
  for (std::size_t i = 0; i < kCount; ++i)
    values.push_back(size == Size::kMoney ? Library::multiply(left[i], right[i]) : left[i]);
  for (auto _ : state) {
    for (const auto& value : values) {
      auto result = Library::round(value);
      benchmark::DoNotOptimize(result);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  const auto ourLeft = numbers<Ours>(size, 0);
  const auto ourRight = numbers<Ours>(size, 1);
  for (std::size_t i = 0; i < kCount; ++i) {
    const NSDecimal value =
        size == Size::kMoney ? Ours::multiply(ourLeft[i], ourRight[i]) : ourLeft[i];
    if (!Library::agrees(Ours::round(value), Library::round(values[i])))
      return state.SkipWithError("a wrong result");
  }
}
template <class Library, Size size>
void compare(benchmark::State& state) {
  const auto left = numbers<Library>(size, 0);
  const auto right = numbers<Library>(size, 1);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kCount; ++i)
      benchmark::DoNotOptimize(Library::less(left[i], right[i]));
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  const auto ourLeft = numbers<Ours>(size, 0);
  const auto ourRight = numbers<Ours>(size, 1);
  for (std::size_t i = 0; i < kCount; ++i) {
    if (Library::less(left[i], right[i]) != Ours::less(ourLeft[i], ourRight[i]))
      return state.SkipWithError("a wrong order");
  }
}
template <class Library, Size size>
void parse(benchmark::State& state) {
  const auto& list = texts(size, 0);
  for (auto _ : state) {
    for (const std::string& text : list) {
      auto result = Library::parse(text);
      benchmark::DoNotOptimize(result);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  for (const std::string& text : list) {
    if (!Library::agrees(NSDecimal::parse(text), Library::parse(text)))
      return state.SkipWithError("a wrong number");
  }
}
template <class Library, Size size>
void print(benchmark::State& state) {
  const auto list = numbers<Library>(size, 0);
  for (auto _ : state) {
    for (const auto& number : list) {
      auto text = Library::print(number);
      benchmark::DoNotOptimize(text.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  const auto ours = numbers<Ours>(size, 0);
  for (std::size_t i = 0; i < kCount; ++i) {
    if (NSDecimal::parse(Library::print(list[i])) != ours[i])
      return state.SkipWithError("a wrong text");
  }
}

/// Stands for a peer that is not here; `scripts/bench` knows the words.
[[maybe_unused]] void notInstalled(benchmark::State& state) {
  state.SkipWithError("not installed");
  for (auto _ : state) continue;
}

/// Times a call on arrays, then checks each result against ours.
template <class Peer, class Call, class Expected>
void runArrays(benchmark::State& state, Call call, Expected expected) {
  std::vector<ArrayNumber> results(kCount);
  for (auto _ : state) {
    call(results.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  std::array<char, 64> text{};
  for (std::size_t i = 0; i < kCount; ++i) {
    const std::string_view written(text.data(), Peer::kPrint(&results[i], text.data()));
    if (!agreesIn(Peer::kDigits, expected(i), NSDecimal::parse(written)))
      return state.SkipWithError("a wrong result");
  }
}
[[maybe_unused]] std::vector<ArrayText> arrayTexts(Size size, unsigned seed) {
  std::vector<ArrayText> list;
  for (const std::string& text : texts(size, seed)) list.push_back({text.c_str(), text.size()});
  return list;
}
template <class Peer>
std::vector<ArrayNumber> arrayNumbers(const std::vector<ArrayText>& given) {
  std::vector<ArrayNumber> list(given.size());
  Peer::kParse(given.data(), list.data(), list.size());
  return list;
}
template <class Peer, Size size, ArrayCalculation* work, auto expected>
void calculateInArrays(benchmark::State& state) {
  const auto left = arrayNumbers<Peer>(arrayTexts(size, 0));
  const auto right = arrayNumbers<Peer>(arrayTexts(size, 1));
  const auto ourLeft = numbers<Ours>(size, 0);
  const auto ourRight = numbers<Ours>(size, 1);
  runArrays<Peer>(
      state, [&](ArrayNumber* results) { work(left.data(), right.data(), results, kCount); },
      [&](std::size_t i) { return expected(ourLeft[i], ourRight[i]); });
}
template <class Peer, Size size>
void roundInArrays(benchmark::State& state) {
  const auto ourLeft = numbers<Ours>(size, 0);
  const auto ourRight = numbers<Ours>(size, 1);
  const std::vector<ArrayText> cent(kCount, {"0.01", 4});
  const auto cents = arrayNumbers<Peer>(cent);
  auto values = arrayNumbers<Peer>(arrayTexts(size, 0));
  if (size == Size::kMoney) {
    const auto left = values;
    const auto right = arrayNumbers<Peer>(arrayTexts(size, 1));
    Peer::kMultiply(left.data(), right.data(), values.data(), kCount);
  }
  runArrays<Peer>(
      state,
      [&](ArrayNumber* results) { Peer::kRound(values.data(), cents.data(), results, kCount); },
      [&](std::size_t i) {
        return Ours::round(size == Size::kMoney ? Ours::multiply(ourLeft[i], ourRight[i])
                                                : ourLeft[i]);
      });
}
template <class Peer, Size size>
void parseInArrays(benchmark::State& state) {
  const auto given = arrayTexts(size, 0);
  const auto ours = numbers<Ours>(size, 0);
  runArrays<Peer>(
      state, [&](ArrayNumber* results) { Peer::kParse(given.data(), results, kCount); },
      [&](std::size_t i) { return ours[i]; });
}

/// Amounts of one exponent in one sum, against the loop over single additions.
struct Loop {
  static NSDecimal sum(const std::vector<NSDecimal>& values) {
    NSDecimal sum;
    for (const NSDecimal& value : values) sum = Ours::add(sum, value);
    return sum;
  }
  static NSDecimal sumOfProducts(const std::vector<NSDecimal>& left,
                                 const std::vector<NSDecimal>& right) {
    NSDecimal sum;
    for (std::size_t i = 0; i < left.size(); ++i)
      sum = Ours::add(sum, Ours::multiply(left[i], right[i]));
    return sum;
  }
};
struct Bulk {
  static NSDecimal sum(const std::vector<NSDecimal>& values) { return NSDecimalSum(values).value; }
  static NSDecimal sumOfProducts(const std::vector<NSDecimal>& left,
                                 const std::vector<NSDecimal>& right) {
    return NSDecimalSumOfProducts(left, right).value;
  }
};

/// Ranges that are too short for vectors.
struct ShortRanges {
  static NSDecimal sumOfProducts(std::span<const NSDecimal> left,
                                 std::span<const NSDecimal> right) {
    constexpr std::size_t kPairs = 48;
    NSDecimalAccumulator total;
    for (; left.size() > kPairs; left = left.subspan(kPairs), right = right.subspan(kPairs))
      total.addProducts(left.first(kPairs), right.first(kPairs));
    total.addProducts(left, right);
    return total.sum().value;
  }
};

template <class Way>
void sum(benchmark::State& state) {
  const auto values = numbers<Ours>(Size::kMoney, 0);
  for (auto _ : state) benchmark::DoNotOptimize(Way::sum(values));
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  if (Way::sum(values) != Loop::sum(values)) state.SkipWithError("a wrong sum");
}
template <class Way>
void sumOfProducts(benchmark::State& state) {
  const auto left = numbers<Ours>(Size::kMoney, 0);
  const auto right = numbers<Ours>(Size::kMoney, 1);
  for (auto _ : state) benchmark::DoNotOptimize(Way::sumOfProducts(left, right));
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
  if (Way::sumOfProducts(left, right) != Loop::sumOfProducts(left, right))
    state.SkipWithError("a wrong sum");
}

#define ORLF_BENCHMARK_ENGINE(work, size, Library, engine) \
  BENCHMARK_TEMPLATE(work, Library, Size::k##size)->Name(#work #size "/" engine)
#define ORLF_BENCHMARK_TEXT(work, size)            \
  ORLF_BENCHMARK_ENGINE(work, size, Ours, "ours"); \
  ORLF_BENCHMARK_ENGINE(work, size, BoostFloat, "boost")
#ifdef ORLF_HAS_DECIMAL128
#define ORLF_BENCHMARK_PEERS(work, size) \
  ORLF_BENCHMARK_TEXT(work, size);       \
  ORLF_BENCHMARK_ENGINE(work, size, Decimal128, "decimal128")
#else
#define ORLF_BENCHMARK_PEERS ORLF_BENCHMARK_TEXT
#endif

ORLF_BENCHMARK_PEERS(add, Money);
ORLF_BENCHMARK_PEERS(add, Long);
ORLF_BENCHMARK_PEERS(multiply, Money);
ORLF_BENCHMARK_PEERS(multiply, Long);
ORLF_BENCHMARK_PEERS(divide, Money);
ORLF_BENCHMARK_PEERS(divide, Long);
ORLF_BENCHMARK_PEERS(roundToCents, Money);
ORLF_BENCHMARK_TEXT(roundToCents, Long);
ORLF_BENCHMARK_PEERS(compare, Money);
ORLF_BENCHMARK_PEERS(compare, Long);
ORLF_BENCHMARK_TEXT(parse, Money);
ORLF_BENCHMARK_TEXT(parse, Long);
ORLF_BENCHMARK_TEXT(print, Money);
ORLF_BENCHMARK_TEXT(print, Long);

#define ORLF_BENCHMARK_ARRAYS(Peer, size, engine)                                       \
  BENCHMARK(calculateInArrays<Peer, Size::k##size, Peer::kAdd, Ours::add>)              \
      ->Name("add" #size "/" engine);                                                   \
  BENCHMARK(calculateInArrays<Peer, Size::k##size, Peer::kMultiply, Ours::multiply>)    \
      ->Name("multiply" #size "/" engine);                                              \
  BENCHMARK(calculateInArrays<Peer, Size::k##size, Peer::kDivide, Ours::divide>)        \
      ->Name("divide" #size "/" engine);                                                \
  BENCHMARK(roundInArrays<Peer, Size::k##size>)->Name("roundToCents" #size "/" engine); \
  BENCHMARK(parseInArrays<Peer, Size::k##size>)->Name("parse" #size "/" engine)
#define ORLF_BENCHMARK_MISSING(size, engine)                      \
  BENCHMARK(notInstalled)->Name("add" #size "/" engine);          \
  BENCHMARK(notInstalled)->Name("multiply" #size "/" engine);     \
  BENCHMARK(notInstalled)->Name("divide" #size "/" engine);       \
  BENCHMARK(notInstalled)->Name("roundToCents" #size "/" engine); \
  BENCHMARK(notInstalled)->Name("parse" #size "/" engine)

#ifdef ORLF_HAS_BID
ORLF_BENCHMARK_ARRAYS(IntelBid, Money, "bid");
ORLF_BENCHMARK_ARRAYS(IntelBid, Long, "bid");
#else
ORLF_BENCHMARK_MISSING(Money, "bid");
ORLF_BENCHMARK_MISSING(Long, "bid");
#endif
#ifdef ORLF_HAS_RUST_DECIMAL
ORLF_BENCHMARK_ARRAYS(RustDecimal, Money, "rust_decimal");
#else
ORLF_BENCHMARK_MISSING(Money, "rust_decimal");
#endif
BENCHMARK_TEMPLATE(sum, Bulk)->Name("sumMoney/ours");
BENCHMARK_TEMPLATE(sum, Loop)->Name("sumMoney/loop");
BENCHMARK_TEMPLATE(sumOfProducts, Bulk)->Name("sumOfProductsMoney/ours");
BENCHMARK_TEMPLATE(sumOfProducts, ShortRanges)->Name("sumOfProductsMoney/shortRanges");
BENCHMARK_TEMPLATE(sumOfProducts, Loop)->Name("sumOfProductsMoney/loop");

}  // namespace
}  // namespace ORLFoundation
