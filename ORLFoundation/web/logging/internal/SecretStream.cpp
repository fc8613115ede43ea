
#include <ORLFoundation/web/logging/internal/SecretStream.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::logging {
namespace {

constexpr std::string_view kMask = "***";
constexpr std::size_t kWindow = std::size_t{64} << 10;
// A byte as "\u0041", each of whose characters has a percent escape.
constexpr std::size_t kLongestEscape = 18;

}  // namespace

SecretStream::SecretStream(std::shared_ptr<const SecretIndex> index)
    : index_(std::move(index)), held_(index_ ? index_->longest() * kLongestEscape : 0) {
  if (!index_) return;
  const std::size_t ways = index_->hasBlanks() ? 2 : 1;
  readings_.push_back({Escapes::JSON, {Escapes::Percent, Escapes::PercentAndPlus}, ways});
  readings_.push_back({Escapes::Percent, {Escapes::JSON}, 1});
  if (index_->hasBlanks()) readings_.push_back({Escapes::PercentAndPlus, {Escapes::JSON}, 1});
}

void SecretStream::append(std::string_view piece, std::string& masked) {
  if (!index_) {
    masked += piece;
    return;
  }
  const std::size_t full = 2 * held_ + kWindow;
  while (!piece.empty()) {
    const std::string_view taken = piece.substr(0, full - std::min(full, window_.size()));
    window_ += taken;
    piece.remove_prefix(taken.size());
    if (window_.size() >= full) pass(false, masked);
  }
}

void SecretStream::finish(std::string& masked) {
  if (index_) pass(true, masked);
}

void SecretStream::pass(bool isLast, std::string& masked) {
  const std::size_t limit = isLast ? window_.size() : window_.size() - held_;
  places_.clear();
  index_->find(window_, places_);
  for (Reading& reading : readings_) read(reading, limit);
  write(limit, masked);
  forget(limit);
}

/// Adds the places that the window shows when it is read this way, and settles where the reading
/// goes on: before the limit, unless an escape ends right there.
void SecretStream::read(Reading& reading, std::size_t limit) {
  const std::size_t begin = reading.begin;
  reading.begin = limit;
  const std::string_view text = std::string_view(window_).substr(begin);
  if (begin > limit || !ResolvedText::mayHold(text, reading.outer)) return;
  const ResolvedText outer(text, reading.outer);
  std::vector<Place> found;
  index_->find(outer.bytes(), found);
  std::size_t settled = outer.bytesBefore(limit - begin);
  for (std::size_t i = 0; i < reading.innerCount; ++i) {
    if (!ResolvedText::mayHold(outer.bytes(), reading.inner[i])) continue;
    const ResolvedText inner(outer.bytes(), reading.inner[i]);
    std::vector<Place> within;
    index_->find(inner.bytes(), within);
    for (const Place place : within) found.push_back(inner.sourceOf(place));
    const std::size_t bytes = inner.bytesBefore(settled);
    settled = bytes == 0 ? 0 : inner.sourceOf({bytes - 1, bytes}).end;
  }
  for (const Place place : found) {
    const Place source = outer.sourceOf(place);
    places_.push_back({begin + source.begin, begin + source.end});
  }
  reading.begin = begin + (settled == 0 ? 0 : outer.sourceOf({settled - 1, settled}).end);
}

void SecretStream::write(std::size_t limit, std::string& masked) {
  std::sort(places_.begin(), places_.end(),
            [](Place one, Place other) { return one.begin < other.begin; });
  for (const Place place : places_) {
    if (place.begin >= limit) break;
    if (place.begin >= covered_) {
      masked.append(window_, covered_, place.begin - covered_);
      masked += kMask;
    }
    covered_ = std::max(covered_, place.end);
  }
  if (covered_ >= limit) return;
  masked.append(window_, covered_, limit - covered_);
  covered_ = limit;
}

/// Drops what no reading needs any more.
void SecretStream::forget(std::size_t limit) {
  std::size_t dropped = limit;
  for (const Reading& reading : readings_) dropped = std::min(dropped, reading.begin);
  window_.erase(0, dropped);
  covered_ -= dropped;
  for (Reading& reading : readings_) reading.begin -= dropped;
}

}  // namespace ORLFoundation::internal::logging
