#include <ORLFoundation/security/primitives/ORLFDataBase64.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/security/primitives/NewBase64.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>

namespace ORLFoundation {
namespace {

struct Free {
  void operator()(void* bytes) const { std::free(bytes); }
};

}  // namespace

NSData dataFromBase64String(std::string_view string) {
  if (!internal::base::isASCII(string)) return {};
  std::size_t length = 0;
  const std::unique_ptr<void, Free> bytes(NewBase64Decode(string.data(), string.size(), &length));
  if (!bytes) throw std::bad_alloc();
  return NSData(std::span(static_cast<const std::uint8_t*>(bytes.get()), length));
}

std::string base64EncodedString(const NSData& data) {
  return base64EncodedStringWithLineBreaks(data, true);
}

std::string base64EncodedStringWithLineBreaks(const NSData& data, bool lineBreaks) {
  std::size_t length = 0;
  const std::unique_ptr<char, Free> text(
      NewBase64Encode(data.bytes().data(), data.length(), lineBreaks ? 1 : 0, &length));
  if (!text) throw std::bad_alloc();
  return {text.get(), length};
}

}  // namespace ORLFoundation
