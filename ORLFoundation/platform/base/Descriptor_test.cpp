#include <ORLFoundation/platform/base/Descriptor.h>

#include <ORLFoundation/platform/base/Bytes.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

namespace ORLFoundation::internal::base {
namespace {

bool isOpen(int number) { return ::fcntl(number, F_GETFD) >= 0; }
int anyNumber() { return ::open("/dev/null", O_RDONLY | O_CLOEXEC); }

TEST(Descriptor, ClosesWhenItDies) {
  const int number = anyNumber();
  {
    const Descriptor owner(number);
    EXPECT_TRUE(owner.isOpen());
    EXPECT_EQ(owner.number(), number);
    EXPECT_TRUE(isOpen(number));
  }
  EXPECT_FALSE(isOpen(number));
  EXPECT_FALSE(Descriptor().isOpen());
  EXPECT_FALSE(Descriptor(-1).isOpen());
}

TEST(Descriptor, ClosesOnceAndTellsOfFailure) {
  Descriptor owner(anyNumber());
  const int number = owner.number();
  EXPECT_TRUE(owner.close());
  EXPECT_FALSE(owner.isOpen());
  EXPECT_FALSE(isOpen(number));
  EXPECT_FALSE(owner.close());
  EXPECT_EQ(errno, EBADF);
}

TEST(Descriptor, MovesItsNumber) {
  Descriptor first(anyNumber());
  const int number = first.number();
  Descriptor second(std::move(first));
  EXPECT_FALSE(first.isOpen());  // NOLINT(bugprone-use-after-move): it holds none
  EXPECT_EQ(second.number(), number);

  const int other = anyNumber();
  Descriptor third(other);
  third = std::move(second);
  EXPECT_FALSE(isOpen(other));
  EXPECT_TRUE(isOpen(number));
  EXPECT_EQ(third.number(), number);
  EXPECT_FALSE(second.isOpen());  // NOLINT(bugprone-use-after-move): it holds none

  Descriptor& itself = third;
  third = std::move(itself);
  EXPECT_EQ(third.number(), number);
  EXPECT_TRUE(isOpen(number));
}

TEST(WriteAll, WritesMoreThanAPipeTakesAtOnce) {
  const std::string text(1 << 20, 'x');
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  const Descriptor from(ends[0]);
  Descriptor to(ends[1]);
  std::string found;
  std::thread reader([&] {
    std::array<char, 4096> piece{};
    for (ssize_t count = 0; (count = ::read(from.number(), piece.data(), piece.size())) > 0;)
      found.append(piece.data(), static_cast<std::size_t>(count));
  });
  EXPECT_TRUE(writeAll(to.number(), bytesOf(text)));
  EXPECT_TRUE(to.close());
  reader.join();
  EXPECT_EQ(found, text);
}

TEST(WriteAll, TellsOfWhatCannotBeWritten) {
  const Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
  EXPECT_FALSE(writeAll(full.number(), bytesOf("x")));
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_TRUE(writeAll(-1, {}));
}

}  // namespace
}  // namespace ORLFoundation::internal::base
