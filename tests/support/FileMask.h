/// The process's mask of the rights of new files, for tests.
#pragma once

#include <sys/stat.h>

namespace orlftest {

/// Sets the mask while it lives.
class FileMask {
 public:
  explicit FileMask(mode_t mask) : before_(::umask(mask)) {}
  ~FileMask() { ::umask(before_); }
  FileMask(const FileMask&) = delete;
  FileMask& operator=(const FileMask&) = delete;

 private:
  const mode_t before_;
};

}  // namespace orlftest
