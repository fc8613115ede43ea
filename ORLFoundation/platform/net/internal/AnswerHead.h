/// The head of an HTTP answer, line by line as it comes.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::net {

class AnswerHead {
 public:
  /// The most bytes of all heads of an exchange, those of interim answers among them.
  static constexpr std::size_t kMostBytes = std::size_t{256} * 1024;

  /// Takes a line with its end. false where there are too many bytes.
  [[nodiscard]] bool take(std::string_view line);
  /// Whether the head of a final answer has come whole; lines after it, a body's trailer, are
  /// counted and passed over.
  [[nodiscard]] bool isWhole() const noexcept { return isWhole_; }

  [[nodiscard]] long status() const noexcept { return status_; }
  /// "HTTP/1.1", "HTTP/2".
  [[nodiscard]] const std::string& version() const noexcept { return version_; }
  /// Values of one name are joined with ", ". Bytes that are no UTF-8 are read as ISO Latin 1.
  [[nodiscard]] const NSHTTPHeaderFields& fields() const noexcept { return fields_; }
  /// They are gone from here afterwards.
  [[nodiscard]] NSHTTPHeaderFields takeFields() noexcept { return std::move(fields_); }

 private:
  void begin(std::string_view statusLine);
  void takeField(std::string_view line);

  std::size_t size_ = 0;
  bool isWhole_ = false;
  long status_ = 0;
  std::string version_;
  NSHTTPHeaderFields fields_;
  std::string* last_ = nullptr;  ///< The value that a folded line goes on with.
};

}  // namespace ORLFoundation::internal::net
