/// The mask of a field of JSON without an engine of expressions, in time that grows with the length
/// of the text alone. It gives what replacing ("NAME"\s*?:\s*?)([^,\]\}]*) by its first group and
/// the value in quotes gives, but leaves broken bytes as they are.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::logging {

class JSONFieldMask {
 public:
  JSONFieldMask(std::string_view fieldName, std::string_view replacementValue);

  [[nodiscard]] std::string process(std::string_view text) const;

 private:
  [[nodiscard]] std::size_t endOfKey(std::string_view text, std::size_t from) const;

  const std::string key_;    // in quotes
  const std::string value_;  // in quotes
};

}  // namespace ORLFoundation::internal::logging
