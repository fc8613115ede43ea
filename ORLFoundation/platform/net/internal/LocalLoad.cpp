#include <ORLFoundation/platform/net/internal/LocalLoad.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/internal/ContentFacts.h>
#include <ORLFoundation/platform/net/internal/DataAddress.h>
#include <ORLFoundation/platform/net/internal/Loader.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace ORLFoundation::internal::net {
namespace {

constexpr std::size_t kPiece = std::size_t{256} * 1024;

}  // namespace

LocalLoad::LocalLoad(Loader& loader, std::shared_ptr<LoadingTask> task,
                     std::shared_ptr<Recipient> recipient)
    : Transfer(std::move(task), std::move(recipient)), loader_(loader) {}

LocalLoad::~LocalLoad() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

// What fails is told by the first step: nothing may end while it begins.
void LocalLoad::begin() {
  const NSURL& url = *task()->request()->URL();
  url.isFileURL() ? beginFile(url) : beginData(url);
}

void LocalLoad::beginData(const NSURL& url) {
  auto data = dataAddressIn(url.absoluteString());
  if (!data) return fail(NSURLErrorBadURL);
  const auto length = static_cast<std::int64_t>(data->bytes.size());
  if (hasBody()) bytes_ = std::move(data->bytes);
  recipient().began(std::make_shared<NSURLResponse>(url, mediaTypeIn(data->mediaType), length,
                                                    charsetIn(data->mediaType)));
}

// Opened without waiting: a pipe, or a device, would hold up all other loads.
void LocalLoad::beginFile(const NSURL& url) {
  const std::string host = url.host().value_or("");
  if (!host.empty() && host != "localhost") return fail(NSURLErrorFileDoesNotExist);
  const std::string path = url.path();
  // "file:name" would be read from wherever the program stands.
  if (path.empty() || path.front() != '/') return fail(NSURLErrorFileDoesNotExist);
  if (path.find('\0') != std::string::npos) return fail(NSURLErrorFileDoesNotExist);
  descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status {};
  if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) return fail(codeOfFileError(errno));
  if (S_ISDIR(status.st_mode)) return fail(NSURLErrorFileIsDirectory);
  if (!S_ISREG(status.st_mode)) return fail(NSURLErrorCannotOpenFile);
  recipient().began(std::make_shared<NSURLResponse>(url, std::nullopt, status.st_size));
}

void LocalLoad::fail(NSURLError code) { failure_ = code; }

bool LocalLoad::hasBody() const { return task()->request()->HTTPMethod() != "HEAD"; }

std::optional<std::span<const std::uint8_t>> LocalLoad::nextPiece() {
  if (begin_ == bytes_.size() && descriptor_ >= 0 && hasBody()) {
    bytes_.resize(kPiece);
    begin_ = 0;
    ssize_t count = 0;
    do {
      count = ::read(descriptor_, bytes_.data(), bytes_.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) return std::nullopt;
    bytes_.resize(static_cast<std::size_t>(count));
  }
  return std::span(reinterpret_cast<const std::uint8_t*>(bytes_.data()), bytes_.size())
      .subspan(begin_);
}

void LocalLoad::step() {
  if (isPaused_) return;
  if (failure_) return loader_.finish(task(), failure(*failure_));
  if (!recipient().isOpen()) return static_cast<void>(isPaused_ = true);
  const auto piece = nextPiece();
  if (!piece) return loader_.finish(task(), failure(codeOfFileError(errno)));
  if (piece->empty()) return loader_.finish(task(), nullptr);
  const auto next = piece->first(std::min(piece->size(), kPiece));
  switch (recipient().take(next)) {
    case Recipient::Taking::Taken:
      begin_ += next.size();
      return;
    case Recipient::Taking::Later:
      isPaused_ = true;
      return;
    case Recipient::Taking::Refused:
      return loader_.finish(task(), failure(recipient().refusal()));
  }
}

}  // namespace ORLFoundation::internal::net
