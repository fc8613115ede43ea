
#include <ORLFoundation/platform/value/NSURL.h>

#include <ORLFoundation/platform/value/NSURLComponents.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using ORLFoundation::NSURL;
using ORLFoundation::NSURLComponents;

// A text is refused or kept; a path survives the way through a file address.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto url = NSURL::URLWithString(text)) {
    if (url->absoluteString() != text) std::abort();
    static_cast<void>(url->host());
    static_cast<void>(url->port());
    static_cast<void>(url->pathExtension());
    const auto components = NSURLComponents::componentsWithURL(*url, true);
    if (components->path().value_or("").size() > components->percentEncodedPath().size())
      std::abort();
  }
  const NSURL file = NSURL::fileURLWithPath(text);
  if (NSURL::URLWithString(file.absoluteString()) != file) std::abort();
  return 0;
}
