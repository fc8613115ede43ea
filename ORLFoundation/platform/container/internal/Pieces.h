/// Streams that are cut into pieces which threads work on: what is written is gathered in pieces of
/// one size, what is read is given out of them. A piece has its plain bytes in `raw`; it is used
/// again when it is done, with what else it holds.
///
///     struct Block { Bytes raw, stored; };
///     PieceCutter<Block> cutter(size, {.work = [](Block& block) { pack(block); },
///                                      .finish = [&](Block& block) { to.write(block.stored); }});
///
/// The last member of its owner: its end waits for threads that use the owner's others.
#pragma once

#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/container/internal/OrderedWork.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::container {

/// How many pieces of a size may be at hand, so that all take 128 MiB at most.
[[nodiscard]] std::size_t mostPiecesOf(std::size_t bytes);

/// Lets nothing go on after a failure: what failed once fails again with the same.
class FirstFailure {
 public:
  template <class Step>
  auto guard(const Step& step) {
    if (failure_) std::rethrow_exception(failure_);
    try {
      return step();
    } catch (...) {
      failure_ = std::current_exception();
      throw;
    }
  }

 private:
  std::exception_ptr failure_;
};

/// Pieces in their order, each worked on by some thread.
template <class Piece>
class OrderedPieces {
 public:
  using Work = std::function<void(Piece& piece)>;

  OrderedPieces(std::size_t pieceBytes, Work work)
      : most_(mostPiecesOf(pieceBytes)), work_(std::move(work)) {}

  [[nodiscard]] bool isFull() const { return begun_.size() == most_; }
  [[nodiscard]] bool isEmpty() const { return begun_.empty(); }
  /// One that was given back, or a new one.
  [[nodiscard]] std::unique_ptr<Piece> spare() {
    if (spare_.empty()) return std::make_unique<Piece>();
    std::unique_ptr<Piece> piece = std::move(spare_.back());
    spare_.pop_back();
    return piece;
  }
  void begin(std::unique_ptr<Piece> piece) {
    begun_.push_back(std::move(piece));
    threads_.add([this, one = begun_.back().get()] { work_(*one); });
  }
  /// Waits for the one that was begun first, and throws what its work threw.
  [[nodiscard]] std::unique_ptr<Piece> takeFirst() {
    threads_.takeFirst();
    std::unique_ptr<Piece> piece = std::move(begun_.front());
    begun_.pop_front();
    return piece;
  }
  void giveBack(std::unique_ptr<Piece> piece) { spare_.push_back(std::move(piece)); }

 private:
  const std::size_t most_;
  const Work work_;
  std::vector<std::unique_ptr<Piece>> spare_;
  std::deque<std::unique_ptr<Piece>> begun_;
  OrderedWork threads_;
};

template <class Piece>
class PieceCutter {
 public:
  struct Steps {
    /// With a whole piece, before threads have it.
    std::function<void(Piece& piece)> prepare = [](Piece&) {};
    /// On any thread.
    std::function<void(Piece& piece)> work;
    /// In the order of the pieces.
    std::function<void(Piece& piece)> finish;
  };

  PieceCutter(std::size_t pieceBytes, Steps steps)
      : pieceBytes_(pieceBytes), steps_(std::move(steps)), pieces_(pieceBytes, steps_.work) {}

  void write(ByteSpan bytes) {
    failure_.guard([this, bytes] { cut(bytes); });
  }
  /// Finishes all, the last piece too, which may be shorter.
  void close() {
    failure_.guard([this] {
      if (piece_) begin();
      while (!pieces_.isEmpty()) finishFirst();
    });
  }

 private:
  void cut(ByteSpan bytes) {
    while (!bytes.empty()) {
      if (!piece_) {
        piece_ = pieces_.spare();
        piece_->raw.clear();
        piece_->raw.reserve(pieceBytes_);
      }
      const std::size_t count = std::min(bytes.size(), pieceBytes_ - piece_->raw.size());
      appendBytes(piece_->raw, bytes.first(count));
      bytes = bytes.subspan(count);
      if (piece_->raw.size() == pieceBytes_) begin();
    }
  }
  void begin() {
    if (pieces_.isFull()) finishFirst();
    steps_.prepare(*piece_);
    pieces_.begin(std::move(piece_));
  }
  void finishFirst() {
    std::unique_ptr<Piece> piece = pieces_.takeFirst();
    steps_.finish(*piece);
    pieces_.giveBack(std::move(piece));
  }

  const std::size_t pieceBytes_;
  const Steps steps_;
  FirstFailure failure_;
  std::unique_ptr<Piece> piece_;
  OrderedPieces<Piece> pieces_;
};

template <class Piece>
class PieceJoiner {
 public:
  struct Steps {
    /// Fills a piece for the work; false where there is none more.
    std::function<bool(Piece& piece)> fetch;
    /// On any thread.
    std::function<void(Piece& piece)> work;
    /// Once, when all was given.
    std::function<void()> end = [] {};
  };

  PieceJoiner(std::size_t pieceBytes, Steps steps)
      : steps_(std::move(steps)), pieces_(pieceBytes, steps_.work) {}

  /// Fills the bytes; fewer at the end alone.
  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) {
    return failure_.guard([this, bytes] { return join(bytes); });
  }

 private:
  [[nodiscard]] std::size_t join(std::span<std::uint8_t> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const std::size_t left = piece_ ? piece_->raw.size() - given_ : 0;
      if (left == 0) {
        if (next()) continue;
        if (!std::exchange(isEnded_, true)) steps_.end();
        break;
      }
      const std::size_t count = std::min(bytes.size() - done, left);
      std::memcpy(bytes.data() + done, piece_->raw.data() + given_, count);
      given_ += count;
      done += count;
    }
    return done;
  }
  [[nodiscard]] bool next() {
    while (!pieces_.isFull()) {
      std::unique_ptr<Piece> fetched = pieces_.spare();
      if (!steps_.fetch(*fetched)) break;
      pieces_.begin(std::move(fetched));
    }
    if (pieces_.isEmpty()) return false;
    if (piece_) pieces_.giveBack(std::move(piece_));
    piece_ = pieces_.takeFirst();
    given_ = 0;
    return true;
  }

  const Steps steps_;
  FirstFailure failure_;
  std::unique_ptr<Piece> piece_;
  std::size_t given_ = 0;
  bool isEnded_ = false;
  OrderedPieces<Piece> pieces_;
};

}  // namespace ORLFoundation::internal::container
