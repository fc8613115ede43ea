#include <ORLFoundation/platform/container/internal/Pieces.h>

#include <ORLFoundation/platform/container/Archive_testing.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace ORLFoundation::internal::container {
namespace {

using orlftest::bytesOf;

struct LetterPiece {
  Bytes raw;
};

/// Threads that pass a gate do so together, or after a while alone.
class Gate {
 public:
  /// Whether so many came.
  bool pass(int expected) {
    std::unique_lock guard(lock_);
    ++count_;
    changed_.notify_all();
    return changed_.wait_for(guard, std::chrono::seconds(10),
                             [this, expected] { return count_ >= expected; });
  }

 private:
  std::mutex lock_;
  std::condition_variable changed_;
  int count_ = 0;
};

TEST(Pieces, AreWorkedOnAtTheSameTime) {
  const int together = static_cast<int>(std::min(2U, threadsForWork()));
  Gate gate;
  std::string order;
  PieceCutter<LetterPiece> cutter(
      1, {.work =
              [&](LetterPiece& piece) {
                EXPECT_TRUE(gate.pass(together));
                ++piece.raw[0];
              },
          .finish = [&](LetterPiece& piece) { order += static_cast<char>(piece.raw[0]); }});
  cutter.write(bytesOf("abcdefgh"));
  cutter.close();
  EXPECT_EQ(order, "bcdefghi");
}

TEST(Pieces, AreFinishedInTheirOrderWhicheverIsDoneFirst) {
  if (threadsForWork() < 2) return;  // one thread does them one after the other
  Gate second;
  std::string order;
  PieceCutter<LetterPiece> cutter(
      1, {.work =
              [&](LetterPiece& piece) {
                if (piece.raw[0] == 'a') {
                  EXPECT_TRUE(second.pass(2));
                }
                if (piece.raw[0] == 'b') static_cast<void>(second.pass(0));
              },
          .finish = [&](LetterPiece& piece) { order += static_cast<char>(piece.raw[0]); }});
  cutter.write(bytesOf("ab"));
  cutter.close();
  EXPECT_EQ(order, "ab");
}

TEST(Pieces, TakeNoMoreMemoryThanAllowed) {
  EXPECT_EQ(mostPiecesOf(1), 2 * threadsForWork());
  EXPECT_EQ(mostPiecesOf(std::size_t{4} << 20), 2 * threadsForWork());
  EXPECT_EQ(mostPiecesOf(std::size_t{32} << 20), 2U);
  EXPECT_EQ(mostPiecesOf(std::size_t{64} << 20), 1U);
  EXPECT_EQ(mostPiecesOf(std::size_t{1} << 40), 1U);
}

TEST(Pieces, FailAgainOnceTheyHaveFailed) {
  int finished = 0;
  PieceCutter<LetterPiece> cutter(1, {.work =
                                          [](LetterPiece& piece) {
                                            if (piece.raw[0] == 'b') throwDamaged("b");
                                          },
                                      .finish = [&](LetterPiece&) { ++finished; }});
  cutter.write(bytesOf("ab"));
  EXPECT_THROW(cutter.close(), ArchiveError);
  EXPECT_THROW(cutter.close(), ArchiveError);
  EXPECT_THROW(cutter.write(bytesOf("c")), ArchiveError);
  EXPECT_EQ(finished, 1);
}

TEST(Pieces, AreReadInTheirOrderAndEndOnce) {
  std::string left = "abcde";
  int ends = 0;
  PieceJoiner<LetterPiece> joiner(2, {.fetch =
                                          [&](LetterPiece& piece) {
                                            piece.raw = bytesOf(left.substr(0, 2));
                                            left.erase(0, 2);
                                            return !piece.raw.empty();
                                          },
                                      .work = [](LetterPiece& piece) { piece.raw[0] ^= 32U; },
                                      .end = [&] { ++ends; }});
  Bytes bytes(3);
  EXPECT_EQ(joiner.read(bytes), 3U);
  EXPECT_EQ(bytes, bytesOf("AbC"));
  EXPECT_EQ(ends, 0);
  EXPECT_EQ(joiner.read(bytes), 2U);
  EXPECT_EQ(joiner.read(bytes), 0U);
  EXPECT_EQ(ends, 1);
}

/// A damaged piece among whole ones: what follows it is not given either.
TEST(Pieces, AreNotReadBehindAFailure) {
  int fetched = 0;
  PieceJoiner<LetterPiece> joiner(1, {.fetch =
                                          [&](LetterPiece& piece) {
                                            piece.raw = {static_cast<std::uint8_t>(++fetched)};
                                            return true;
                                          },
                                      .work =
                                          [](LetterPiece& piece) {
                                            if (piece.raw[0] == 2) throwDamaged("the second");
                                          }});
  Bytes byte(1);
  EXPECT_EQ(joiner.read(byte), 1U);
  for (int again = 0; again < 3 * static_cast<int>(mostPiecesOf(1)); ++again)
    EXPECT_THROW(static_cast<void>(joiner.read(byte)), ArchiveError);
  EXPECT_EQ(byte[0], 1);
}

}  // namespace
}  // namespace ORLFoundation::internal::container
