/// Sums and percentages as people type them in a locale, read whole, and why one cannot be.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// A number within a sum: as it was typed, and as it was understood.
struct TypedNumber {
  std::string text;
  ORLFoundation::NSDecimalNumber number;
};

struct TypedSum {
  std::optional<ORLFoundation::NSDecimalNumber> value;
  std::string fault;  // why there is no value, for people
  std::vector<TypedNumber> numbers;
};

class SumReader {
 public:
  using Limit = std::optional<ORLFoundation::NSDecimalNumber>;

  SumReader(const std::string& locale, const Limit& minimum, const Limit& maximum);
  ~SumReader();

  /// White space around the sum is no part of it.
  [[nodiscard]] TypedSum read(std::string_view text);

 private:
  class Formatter;
  std::unique_ptr<Formatter> formatter_;
};

/// "5" and "5%" are 0.05. The fault shows how the locale writes one.
[[nodiscard]] TypedSum readPercentage(const std::string& locale, std::string_view text);

}  // namespace orlftool
