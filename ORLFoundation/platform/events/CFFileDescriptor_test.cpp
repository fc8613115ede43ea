#include <ORLFoundation/platform/events/CFFileDescriptor.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A pipe whose end to be read from is on this thread's loop.
class FileDescriptor : public testing::Test {
 protected:
  FileDescriptor() {
    EXPECT_EQ(::pipe2(pipe_.data(), O_NONBLOCK | O_CLOEXEC), 0);
    reference_ = CFFileDescriptorCreate(pipe_[0], true, note, this);
  }
  ~FileDescriptor() override {
    reference_ = nullptr;
    ::close(pipe_[1]);
  }

  static void note(const CFFileDescriptorRef& reference, CFOptionFlags types, void* info) {
    auto& self = *static_cast<FileDescriptor*>(info);
    EXPECT_EQ(reference, self.reference_);
    self.calls_.push_back(types);
    if (self.isEnabledAgain_) CFFileDescriptorEnableCallBacks(reference, types);
  }
  static void noteTypes(const CFFileDescriptorRef&, CFOptionFlags types, void* info) {
    static_cast<std::vector<CFOptionFlags>*>(info)->push_back(types);
  }
  void addToLoop(const std::string& mode = kCFRunLoopDefaultMode) {
    CFRunLoopAddSource(CFRunLoopGetCurrent(), CFFileDescriptorCreateRunLoopSource(reference_),
                       mode);
  }
  void enable() { CFFileDescriptorEnableCallBacks(reference_, kCFFileDescriptorReadCallBack); }
  void tell() { ASSERT_EQ(::write(pipe_[1], "x", 1), 1); }
  std::vector<CFOptionFlags> callsOfATurn(const std::string& mode = kCFRunLoopDefaultMode) {
    CFRunLoopGetCurrent()->runMode(mode, NSDate::date());
    return std::exchange(calls_, {});
  }

  std::array<int, 2> pipe_{};
  CFFileDescriptorRef reference_;
  bool isEnabledAgain_ = false;
  std::vector<CFOptionFlags> calls_;
};

TEST_F(FileDescriptor, CallsOnceForEachLeave) {
  addToLoop();
  tell();
  EXPECT_THAT(callsOfATurn(), IsEmpty()) << "not enabled";
  enable();
  EXPECT_THAT(callsOfATurn(), ElementsAre(kCFFileDescriptorReadCallBack));
  EXPECT_THAT(callsOfATurn(), IsEmpty());
  isEnabledAgain_ = true;
  enable();
  EXPECT_THAT(callsOfATurn(), ElementsAre(kCFFileDescriptorReadCallBack));
  EXPECT_THAT(callsOfATurn(), ElementsAre(kCFFileDescriptorReadCallBack)) << "still to be read";
}

TEST_F(FileDescriptor, MayBeEnabledBeforeItIsAdded) {
  enable();
  tell();
  addToLoop();
  EXPECT_THAT(callsOfATurn(), ElementsAre(kCFFileDescriptorReadCallBack));
}

TEST_F(FileDescriptor, CallsInItsModes) {
  addToLoop("first mode");
  addToLoop("second mode");
  enable();
  tell();
  EXPECT_THAT(callsOfATurn(), IsEmpty());
  EXPECT_THAT(callsOfATurn("second mode"), ElementsAre(kCFFileDescriptorReadCallBack));
  EXPECT_THAT(callsOfATurn("first mode"), IsEmpty()) << "one leave for both";
}

TEST_F(FileDescriptor, TellsReadingFromWriting) {
  const auto writing = CFFileDescriptorCreate(pipe_[1], false, noteTypes, &calls_);
  CFRunLoopAddSource(CFRunLoopGetCurrent(), CFFileDescriptorCreateRunLoopSource(writing),
                     kCFRunLoopDefaultMode);
  CFFileDescriptorEnableCallBacks(writing,
                                  kCFFileDescriptorReadCallBack | kCFFileDescriptorWriteCallBack);
  EXPECT_THAT(callsOfATurn(), ElementsAre(kCFFileDescriptorWriteCallBack));
  CFFileDescriptorInvalidate(writing);
  EXPECT_NE(::fcntl(pipe_[1], F_GETFD), -1) << "was not given away";
}

TEST_F(FileDescriptor, CallsForAnEndThatHungUp) {
  addToLoop();
  enable();
  ::close(pipe_[1]);
  pipe_[1] = -1;
  EXPECT_THAT(callsOfATurn(), ElementsAre(kCFFileDescriptorReadCallBack));
}

TEST_F(FileDescriptor, ClosesItsDescriptorWhenItIsInvalidated) {
  addToLoop();
  enable();
  tell();
  CFFileDescriptorInvalidate(reference_);
  CFFileDescriptorInvalidate(reference_);
  EXPECT_THAT(callsOfATurn(), IsEmpty());
  EXPECT_EQ(::fcntl(pipe_[0], F_GETFD), -1);
  EXPECT_EQ(CFFileDescriptorCreateRunLoopSource(reference_), nullptr);
  enable();
  EXPECT_THAT(callsOfATurn(), IsEmpty());
}

TEST_F(FileDescriptor, IsNilForABadDescriptor) {
  EXPECT_EQ(CFFileDescriptorCreate(-1, true, note, this), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
