#include "interchange/record_file.h"

#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "io/atomic_file.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// Gathers writes, and throws where one fails: the writers take a short one for a success.
class GatheredStream final : public NSOutputStream {
 public:
  GatheredStream(const std::string& path, std::string name)
      : name_(std::move(name)), file_(std::fopen(path.c_str(), "wb"), &std::fclose) {
    if (!file_) fail();
  }

  NSInteger write(std::span<const std::uint8_t> buffer) override {
    if (std::fwrite(buffer.data(), 1, buffer.size(), file_.get()) != buffer.size()) fail();
    return static_cast<NSInteger>(buffer.size());
  }
  void finish() {
    if (std::fflush(file_.get()) != 0) fail();
  }

 private:
  [[noreturn]] void fail() const {
    throw JobFailure(name_ + ": cannot be written: " + std::strerror(errno));
  }

  const std::string name_;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

}  // namespace

void writeRecordFile(const std::string& path,
                     const std::function<void(const std::shared_ptr<NSOutputStream>&)>& write) {
  if (path == "-") throw UsageFailure("--output: expected the name of a file, got '-'");
  writeFileAtomically(path, [&](const std::string& temporaryPath) {
    const auto stream = std::make_shared<GatheredStream>(temporaryPath, path);
    stream->open();
    write(stream);
    stream->finish();
  });
}

void requireOtherFile(const std::string& output, const std::string& table) {
  struct stat written {};
  struct stat read {};
  if (::stat(output.c_str(), &written) != 0 || ::stat(table.c_str(), &read) != 0) return;
  if (written.st_dev == read.st_dev && written.st_ino == read.st_ino)
    throw UsageFailure("--output: expected another file than the table, got " +
                       quotedForMessage(output));
}

NSUInteger beginText(NSOutputStream& stream, NSUInteger encoding) {
  if (encoding != NSUTF16StringEncoding) return encoding;
  constexpr std::array<std::uint8_t, 2> kLittleEndianMark{0xFF, 0xFE};
  stream.write(kLittleEndianMark);
  return NSUTF16LittleEndianStringEncoding;
}

}  // namespace orlftool
