// Masks over bodies of 16 MB, beside what does the same work by other means: ICU's expressions for
// a field, and a search of the C library for each secret, which finds plain ones only.
#include <ORLFoundation/platform/text/NSRegularExpression.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask.h>
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ORLFoundation;

constexpr std::size_t kBody = std::size_t{16} << 20;

/// Records as services send them: with escapes in texts, and a field to mask in each.
const std::string& body() {
  static const std::string text = [] {
    std::mt19937 random(18);
    std::string records = "[";
    for (int i = 0; records.size() < kBody; ++i) {
      records += R"({"id":)" + std::to_string(i) + R"(,"payee":"Caf\u00e9 \"No. )" +
                 std::to_string(random() % 100) + R"(\"","url":"https:\/\/example.com\/a%20b?x=)" +
                 std::to_string(random()) + R"(","password":"p)" + std::to_string(random()) +
                 R"(","memo":"groceries, and what else there was on this day"},)";
    }
    return records += "]";
  }();
  return text;
}

std::vector<std::string> secrets(std::size_t count) {
  std::mt19937 random(7);
  std::vector<std::string> made;
  for (std::size_t i = 0; i < count; ++i) {
    std::string secret;
    while (secret.size() < 24)
      secret += "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-"[random() % 64];
    made.push_back(secret);
  }
  return made;
}

/// The time of a byte, and bytes a second.
void report(benchmark::State& state, std::size_t size = body().size()) {
  const auto bytes = state.iterations() * static_cast<std::int64_t>(size);
  state.SetItemsProcessed(bytes);
  state.SetBytesProcessed(bytes);
}

void maskField(benchmark::State& state) {
  const auto mask = ORLFURLSessionLogReplacement::initWithJSONFieldName("password", "***");
  const auto expected = mask->process(body());
  if (expected->size() >= body().size() || expected->find("\"p1") != std::string::npos)
    state.SkipWithError("not masked");
  for (auto _ : state) benchmark::DoNotOptimize(mask->process(body()));
  report(state);
}
BENCHMARK(maskField)->Name("field mask/ours")->Unit(benchmark::kMillisecond);

void maskFieldByICU(benchmark::State& state) {
  const auto mask = ORLFURLSessionLogReplacement::initWithJSONFieldName("password", "***");
  for (auto _ : state)
    benchmark::DoNotOptimize(
        mask->expression()->stringByReplacingMatchesInString(body(), mask->replacement()));
  report(state);
}
BENCHMARK(maskFieldByICU)->Name("field mask/ICU")->Unit(benchmark::kMillisecond);

template <std::size_t count>
void maskSecrets(benchmark::State& state) {
  ORLFURLSessionSecretMask mask;
  const auto named = secrets(count);
  for (const std::string& secret : named) mask.addSecret(secret);
  if (*mask.process(body() + named.back()) != body() + "***") state.SkipWithError("not masked");
  for (auto _ : state) benchmark::DoNotOptimize(mask.process(body()));
  report(state);
}
BENCHMARK_TEMPLATE(maskSecrets, 1)->Name("1 secret/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(maskSecrets, 100)->Name("100 secrets/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(maskSecrets, 10'000)->Name("10000 secrets/ours")->Unit(benchmark::kMillisecond);

void maskSecretsOfPlainText(benchmark::State& state) {
  ORLFURLSessionSecretMask mask;
  for (const std::string& secret : secrets(100)) mask.addSecret(secret);
  std::string text(kBody, 'x');
  std::mt19937 random(3);
  for (char& c : text) c = static_cast<char>('a' + random() % 26);
  for (auto _ : state) benchmark::DoNotOptimize(mask.process(text));
  report(state);
}
BENCHMARK(maskSecretsOfPlainText)
    ->Name("100 secrets in plain text/ours")
    ->Unit(benchmark::kMillisecond);

/// One search a secret, of one spelling: at 1 MB, so that it ends.
void searchForEachSecret(benchmark::State& state) {
  const auto named = secrets(100);
  const std::size_t size = kBody / 16;
  for (auto _ : state)
    for (const std::string& secret : named)
      benchmark::DoNotOptimize(::memmem(body().data(), size, secret.data(), secret.size()));
  report(state, size);
}
BENCHMARK(searchForEachSecret)->Name("100 secrets/search for each")->Unit(benchmark::kMillisecond);

}  // namespace
