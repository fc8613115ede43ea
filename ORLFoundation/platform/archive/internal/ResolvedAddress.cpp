
#include <ORLFoundation/platform/archive/internal/ResolvedAddress.h>

#include <libxml/globals.h>
#include <libxml/uri.h>

#include <memory>

namespace ORLFoundation::internal::archive {

std::optional<NSURL> resolvedAddress(const std::optional<NSURL>& base,
                                     const std::string& relative) {
  if (!base) return NSURL::URLWithString(relative);
  const auto text = [](const std::string& address) {
    return reinterpret_cast<const xmlChar*>(address.c_str());
  };
  const std::unique_ptr<xmlChar, void (*)(void*)> resolved(
      xmlBuildURI(text(relative), text(base->absoluteString())), xmlFree);
  if (!resolved) return std::nullopt;
  return NSURL::URLWithString(reinterpret_cast<const char*>(resolved.get()));
}

}  // namespace ORLFoundation::internal::archive
