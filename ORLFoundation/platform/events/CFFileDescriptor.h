/// A descriptor that calls a function on a run loop when it can be read or written.
///
///     const auto reference = CFFileDescriptorCreate(descriptor, true, readMore, this);
///     const auto source = CFFileDescriptorCreateRunLoopSource(reference);
///     CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
///     CFFileDescriptorEnableCallBacks(reference, kCFFileDescriptorReadCallBack);
#pragma once

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

class CFFileDescriptor;
/// A counted reference; nil is null.
using CFFileDescriptorRef = std::shared_ptr<CFFileDescriptor>;
/// Bits of options.
using CFOptionFlags = unsigned long;
/// Gets the reference, what is ready, and the context that the reference was made with.
using CFFileDescriptorCallBack = void (*)(const CFFileDescriptorRef& reference,
                                          CFOptionFlags callBackTypes, void* info);

/// The descriptor can be read, has hung up, or has failed.
inline constexpr CFOptionFlags kCFFileDescriptorReadCallBack = 1;
/// The descriptor takes bytes.
inline constexpr CFOptionFlags kCFFileDescriptorWriteCallBack = 2;

/// The state behind the functions below; they may be called on any thread.
class CFFileDescriptor final : public NSObject {
 public:
  CFFileDescriptor(int descriptor, bool closesOnInvalidate, CFFileDescriptorCallBack callBack,
                   void* info)
      : descriptor_(descriptor),
        closesOnInvalidate_(closesOnInvalidate),
        callBack_(callBack),
        info_(info) {}
  ~CFFileDescriptor() override;

  void addToLoop(const std::shared_ptr<NSRunLoop>& loop, const std::string& mode);
  void enable(CFOptionFlags callBackTypes);
  void invalidate();
  [[nodiscard]] bool isValid() const;
  [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  [[nodiscard]] std::string className() const override { return "CFFileDescriptor"; }

 private:
  /// A loop and mode that it was added to, and its place there while it is enabled.
  struct Place {
    std::weak_ptr<NSRunLoop> loop;
    std::string mode;
    std::shared_ptr<NSRunLoopDescriptor> token;
  };

  /// With lock_ held.
  void listen(Place& place);
  void fire(short events);

  const int descriptor_;
  const bool closesOnInvalidate_;
  const CFFileDescriptorCallBack callBack_;
  void* const info_;
  mutable std::mutex lock_;
  std::vector<Place> places_;
  CFOptionFlags enabled_ = 0;
  bool isValid_ = true;
};

/// What a reference does on a run loop.
struct CFRunLoopSource {
  CFFileDescriptorRef reference;
};
/// A counted reference; nil is null.
using CFRunLoopSourceRef = std::shared_ptr<CFRunLoopSource>;

/// The name of the default mode.
extern const std::string kCFRunLoopDefaultMode;

/// nil for a bad descriptor. The context is handed on as it is. `closeOnInvalidate` gives the
/// descriptor to the reference, which closes it when it is invalidated or dies.
[[nodiscard]] CFFileDescriptorRef CFFileDescriptorCreate(int descriptor, bool closeOnInvalidate,
                                                         CFFileDescriptorCallBack callBack,
                                                         void* info);
/// nil for a reference that is invalid.
[[nodiscard]] CFRunLoopSourceRef CFFileDescriptorCreateRunLoopSource(
    const CFFileDescriptorRef& reference);
/// Lets the function be called once when the descriptor is ready for one of the types; the call
/// takes that leave back for the types that it tells of.
void CFFileDescriptorEnableCallBacks(const CFFileDescriptorRef& reference,
                                     CFOptionFlags callBackTypes);
/// No call begins afterwards on the loop's thread.
void CFFileDescriptorInvalidate(const CFFileDescriptorRef& reference);
[[nodiscard]] std::shared_ptr<NSRunLoop> CFRunLoopGetCurrent();
void CFRunLoopAddSource(const std::shared_ptr<NSRunLoop>& loop, const CFRunLoopSourceRef& source,
                        const std::string& mode);

}  // namespace ORLFoundation
