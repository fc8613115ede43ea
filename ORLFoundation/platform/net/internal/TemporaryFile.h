/// The file that a download goes to until its delegate has it.
#pragma once

#include <ORLFoundation/platform/base/Descriptor.h>
#include <ORLFoundation/platform/base/TemporaryPath.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

namespace ORLFoundation::internal::net {

/// Only its owner may read it. It goes with the object, or when a signal ends the program, unless
/// somebody has moved it away.
class TemporaryFile {
 public:
  /// In the folder that TMPDIR names, else in /tmp. null, with errno, where none can be made.
  [[nodiscard]] static std::unique_ptr<TemporaryFile> make();
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::string& path() const noexcept { return path_; }
  /// false, with errno, where not all of it can be written.
  [[nodiscard]] bool write(std::span<const std::uint8_t> bytes) const;
  /// false where the system tells only now that what was written is lost.
  [[nodiscard]] bool close();

 private:
  TemporaryFile(std::string path, int descriptor)
      : path_(std::move(path)), noted_(path_), descriptor_(descriptor) {}

  const std::string path_;
  const base::TemporaryPath noted_;
  base::Descriptor descriptor_;
};

}  // namespace ORLFoundation::internal::net
