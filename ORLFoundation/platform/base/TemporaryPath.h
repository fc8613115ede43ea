/// Files that go when their owner does, and when a signal ends the program before that.
///
///     const TemporaryPath noted("rates.csv.part");   // before the file is made
#pragma once

#include <string_view>

namespace ORLFoundation::internal::base {

/// Notes a path for as long as it lives; it makes no file and removes none.
class TemporaryPath {
 public:
  /// A relative path is one from the folder that the process is in when it ends. A path that is
  /// longer than the system takes is not noted. Any thread.
  explicit TemporaryPath(std::string_view path) noexcept;
  ~TemporaryPath();
  TemporaryPath(const TemporaryPath&) = delete;
  TemporaryPath& operator=(const TemporaryPath&) = delete;

 private:
  struct Slot;
  friend void removeTemporaryFiles() noexcept;

  [[nodiscard]] static Slot* takeSlot() noexcept;

  Slot* const slot_;
};

/// Removes the files at all paths that are noted, for a signal's handler that ends the program: it
/// allocates nothing and takes no lock, and who would note a path from now on waits for the end.
void removeTemporaryFiles() noexcept;

}  // namespace ORLFoundation::internal::base
