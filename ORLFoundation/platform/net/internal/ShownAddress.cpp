#include <ORLFoundation/platform/net/internal/ShownAddress.h>

namespace ORLFoundation::internal::net {

std::string shownAddress(const std::optional<NSURL>& url) {
  if (!url) return "(null)";
  std::string shown = url->scheme().value_or("") + ":";
  if (!url->host() && !url->isFileURL()) return shown;
  shown += "//" + url->host().value_or("");
  if (const auto port = url->port()) shown += ":" + std::to_string(*port);
  return shown.append(url->percentEncodedPath());
}

}  // namespace ORLFoundation::internal::net
