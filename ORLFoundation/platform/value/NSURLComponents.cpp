
#include <ORLFoundation/platform/value/NSURLComponents.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/internal/PercentEscapes.h>

namespace ORLFoundation {

std::optional<NSURLComponents> NSURLComponents::componentsWithURL(
    const std::optional<NSURL>& url, bool /*resolvingAgainstBaseURL*/) {
  if (!url) return std::nullopt;
  return NSURLComponents(*url);
}

std::optional<std::string> NSURLComponents::path() const {
  std::string path = internal::value::withoutPercentEscapes(url_.percentEncodedPath());
  if (!internal::base::isUTF8(path)) return std::nullopt;
  return path;
}

std::string NSURLComponents::percentEncodedPath() const {
  return std::string(url_.percentEncodedPath());
}

}  // namespace ORLFoundation
