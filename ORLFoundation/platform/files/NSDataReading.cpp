#include <ORLFoundation/platform/files/NSDataReading.h>

#include <ORLFoundation/platform/files/FileFailure.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

namespace {

constexpr std::size_t kMostBytes = std::size_t{64} << 20;
constexpr std::size_t kBytesAtATime = std::size_t{1} << 16;

struct Close {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

std::nullopt_t fail(NSErrorSlot slot, const NSURL& url, int number) {
  internal::files::fillErrorSlot(slot, {internal::files::FileWork::Read, number, url.path()});
  return std::nullopt;
}

}  // namespace

std::optional<NSData> dataWithContentsOfURL(const NSURL& url, NSUInteger, NSErrorSlot error) {
  const auto path = internal::files::pathOfFileURL(url, internal::files::FileWork::Read, error);
  if (!path) return std::nullopt;
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path->c_str(), "rbe"));
  if (!file) return fail(error, url, errno);
  std::vector<std::uint8_t> bytes;
  while (true) {
    std::array<std::uint8_t, kBytesAtATime> piece{};
    errno = 0;
    const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get());
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    if (std::ferror(file.get()) != 0) return fail(error, url, errno == 0 ? EIO : errno);
    if (bytes.size() > kMostBytes) return fail(error, url, EFBIG);
    if (count == 0) return NSData(std::move(bytes));
  }
}

}  // namespace ORLFoundation
