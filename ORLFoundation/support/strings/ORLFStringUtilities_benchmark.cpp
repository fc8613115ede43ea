// Title case and the test for e-mail addresses, in bytes per second.

#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <benchmark/benchmark.h>

#include <string>

namespace ORLFoundation {
namespace {

constexpr int kRepetitions = 2000;

std::string repeated(std::string_view text) {
  std::string result;
  for (int i = 0; i < kRepetitions; ++i) result += text;
  return result;
}

void writeTitle(benchmark::State& state, std::string_view sentence, std::string_view title) {
  const auto locale = std::make_shared<NSLocale>("en_US");
  const std::string text = repeated(sentence);
  const std::string expected = repeated(title);
  std::string result;
  for (auto _ : state) {
    result = orlfTitleCase(text, locale);
    benchmark::DoNotOptimize(result);
  }
  if (result != expected) state.SkipWithError("wrong title");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void titleOfEnglish(benchmark::State& state) {
  writeTitle(state, "Payment of the rent for march from bank of america, in 12 parts.\n",
             "Payment of The Rent for March From Bank of America, in 12 Parts.\n");
}
BENCHMARK(titleOfEnglish)->Name("orlfTitleCase/english/ours");

void titleOfMarkedLetters(benchmark::State& state) {
  writeTitle(state, "Café élan überweisung für straße; économie à façade.\n",
             "Café Élan Überweisung Für Straße; Économie À Façade.\n");
}
BENCHMARK(titleOfMarkedLetters)->Name("orlfTitleCase/marks/ours");

void titleOfShortTexts(benchmark::State& state) {
  const auto locale = std::make_shared<NSLocale>("en_US");
  const std::string text = "payment from bank of america";
  std::string result;
  for (auto _ : state) {
    result = orlfTitleCase(text, locale);
    benchmark::DoNotOptimize(result);
  }
  if (result != "Payment From Bank of America") state.SkipWithError("wrong title");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(titleOfShortTexts)->Name("orlfTitleCase/short/ours");

void testAddress(benchmark::State& state, const std::string& text, bool expected) {
  bool result = !expected;
  for (auto _ : state) {
    result = isEmailAddress(text);
    benchmark::DoNotOptimize(result);
  }
  if (result != expected) state.SkipWithError("wrong answer");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void testOfAnAddress(benchmark::State& state) {
  testAddress(state, "first.last+tag@mail.example.com", true);
}
BENCHMARK(testOfAnAddress)->Name("isEmailAddress/address/ours");

void testOfALongText(benchmark::State& state) {
  testAddress(state, repeated("Payment of the rent, in 12 parts; ask a@b or c@d.\n"), false);
}
BENCHMARK(testOfALongText)->Name("isEmailAddress/long/ours");

void testOfLettersOnly(benchmark::State& state) { testAddress(state, repeated("payee"), false); }
BENCHMARK(testOfLettersOnly)->Name("isEmailAddress/letters/ours");

}  // namespace
}  // namespace ORLFoundation
