/// Masks secrets in a text that comes in pieces. The text is read in windows, each as it is and
/// with its escapes resolved, one kind within the other too; what a secret that begins in a window
/// may need of the next one is held back.
#pragma once

#include <ORLFoundation/web/logging/internal/ResolvedText.h>
#include <ORLFoundation/web/logging/internal/SecretIndex.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::logging {

class SecretStream {
 public:
  /// Without an index nothing is masked.
  explicit SecretStream(std::shared_ptr<const SecretIndex> index);

  /// Adds to `masked` what is settled.
  void append(std::string_view piece, std::string& masked);
  void finish(std::string& masked);

 private:
  /// A way to read the text: escapes of one kind, and those of the others in what comes of it.
  struct Reading {
    Escapes outer;
    std::array<Escapes, 2> inner;
    std::size_t innerCount;
    std::size_t begin = 0;  // in window_: where the next escape or character begins
  };

  void pass(bool isLast, std::string& masked);
  void read(Reading& reading, std::size_t limit);
  void write(std::size_t limit, std::string& masked);
  void forget(std::size_t limit);

  const std::shared_ptr<const SecretIndex> index_;
  const std::size_t held_;  // the most bytes that a secret takes with all its escapes
  std::vector<Reading> readings_;
  std::string window_;
  std::size_t covered_ = 0;  // in window_: what stands before has been written or masked
  std::vector<Place> places_;
};

}  // namespace ORLFoundation::internal::logging
