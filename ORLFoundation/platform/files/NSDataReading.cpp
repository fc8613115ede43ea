#include <ORLFoundation/platform/files/NSDataReading.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
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

NSInteger codeOf(int number) {
  switch (number) {
    case ENOENT:
    case ENOTDIR:
      return NSFileReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileReadNoPermissionError;
    case EFBIG:
      return NSFileReadTooLargeError;
    default:
      return NSFileReadUnknownError;
  }
}

std::nullopt_t fail(NSErrorSlot slot, const NSURL& url, int number) {
  const std::string path = url.path();
  const auto cause = NSError::errorWithDomain(
      NSPOSIXErrorDomain, number,
      NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, std::strerror(number)}}));
  const auto userInfo = NSDictionary::dictionaryWithEntries(
      {{NSLocalizedDescriptionKey, path + ": " + std::strerror(number)},
       {NSFilePathErrorKey, path},
       {NSURLErrorKey, url},
       {NSUnderlyingErrorKey, cause}});
  NSFillErrorSlot(slot, NSError::errorWithDomain(NSCocoaErrorDomain, codeOf(number), userInfo));
  return std::nullopt;
}

}  // namespace

std::optional<NSData> dataWithContentsOfURL(const NSURL& url, NSUInteger, NSErrorSlot error) {
  if (!url.isFileURL()) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSFileReadUnsupportedSchemeError,
                    url.absoluteString() + ": not the address of a file");
    return std::nullopt;
  }
  const std::unique_ptr<std::FILE, Close> file(std::fopen(url.path().c_str(), "rbe"));
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
