
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask.h>

#include <ORLFoundation/web/logging/internal/SecretIndex.h>
#include <ORLFoundation/web/logging/internal/SecretStream.h>

#include <cstring>
#include <utility>

namespace ORLFoundation {

using internal::logging::SecretIndex;
using internal::logging::SecretStream;

namespace {

void wipe(std::vector<std::string>& secrets) {
  for (std::string& secret : secrets) ::explicit_bzero(secret.data(), secret.size());
}

}  // namespace

ORLFURLSessionSecretMask::ORLFURLSessionSecretMask() = default;

ORLFURLSessionSecretMask::~ORLFURLSessionSecretMask() { wipe(secrets_); }

bool ORLFURLSessionSecretMask::addSecret(std::string_view secret) {
  if (secret.size() < kShortestSecret) return false;
  const std::lock_guard guard(lock_);
  if (secrets_.size() == secrets_.capacity()) {
    // Growing by itself, the list would leave short ones behind in the memory that it had.
    std::vector<std::string> larger;
    larger.reserve(2 * secrets_.size() + 1);
    larger = secrets_;
    wipe(secrets_);
    secrets_.swap(larger);
  }
  secrets_.emplace_back(secret);
  index_ = nullptr;
  return true;
}

/// null where there is no secret.
std::shared_ptr<const SecretIndex> ORLFURLSessionSecretMask::index() const {
  const std::lock_guard guard(lock_);
  if (!index_ && !secrets_.empty()) index_ = std::make_shared<SecretIndex>(secrets_);
  return index_;
}

std::optional<std::string> ORLFURLSessionSecretMask::process(std::optional<std::string> string) {
  auto secrets = index();
  if (!string || !secrets) return string;
  SecretStream stream(std::move(secrets));
  std::string masked;
  masked.reserve(string->size());
  stream.append(*string, masked);
  stream.finish(masked);
  return masked;
}

ORLFURLSessionSecretMask::Pieces::Pieces(const ORLFURLSessionSecretMask& mask)
    : stream_(std::make_unique<SecretStream>(mask.index())) {}

ORLFURLSessionSecretMask::Pieces::~Pieces() = default;

std::string ORLFURLSessionSecretMask::Pieces::append(std::string_view piece) {
  std::string masked;
  stream_->append(piece, masked);
  return masked;
}

std::string ORLFURLSessionSecretMask::Pieces::finish() {
  std::string masked;
  stream_->finish(masked);
  return masked;
}

}  // namespace ORLFoundation
