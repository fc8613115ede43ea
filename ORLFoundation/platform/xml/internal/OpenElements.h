/// The elements that are open in a document, those of entities among them.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <vector>

namespace ORLFoundation::internal::xml {

class OpenElements {
 public:
  /// An element whose tag declares so many namespaces; `holdsElementsAlone` by the document's DTD.
  void open(NSUInteger namespaces, bool holdsElementsAlone) {
    ++count_;
    if (holdsElementsAlone) holdElementsAlone_.push_back(count_);
    if (namespaces > 0) declaring_.push_back({count_, namespaces});
    namespaces_ += namespaces;
  }
  void close() noexcept {
    if (holdsElementsAlone()) holdElementsAlone_.pop_back();
    if (!declaring_.empty() && declaring_.back().depth == count_) {
      namespaces_ -= declaring_.back().namespaces;
      declaring_.pop_back();
    }
    --count_;
  }

  [[nodiscard]] NSUInteger count() const noexcept { return count_; }
  /// What all of their tags declare.
  [[nodiscard]] NSUInteger namespaces() const noexcept { return namespaces_; }
  /// Whether the innermost one holds elements alone; false where none is open.
  [[nodiscard]] bool holdsElementsAlone() const noexcept {
    return !holdElementsAlone_.empty() && holdElementsAlone_.back() == count_;
  }

 private:
  struct Declaring {
    NSUInteger depth;
    NSUInteger namespaces;
  };

  NSUInteger count_ = 0;
  NSUInteger namespaces_ = 0;
  // Depths of elements of either kind alone: most documents know none of them.
  std::vector<NSUInteger> holdElementsAlone_;
  std::vector<Declaring> declaring_;
};

}  // namespace ORLFoundation::internal::xml
