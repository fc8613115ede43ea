// What servers and addresses may hold: heads of answers, places that redirects lead to, data.
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/internal/AnswerHead.h>
#include <ORLFoundation/platform/net/internal/DataAddress.h>
#include <ORLFoundation/platform/net/internal/Redirect.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;
using namespace ORLFoundation::internal::net;

void require(bool holds) {
  if (!holds) std::abort();
}

void readHead(std::string_view text) {
  AnswerHead head;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::size_t length = end == std::string_view::npos ? text.size() : end + 1;
    if (!head.take(text.substr(0, length))) return;
    text.remove_prefix(length);
  }
  for (const auto& [name, value] : head.fields())
    require(internal::base::isUTF8(name) && internal::base::isUTF8(value));
  const NSHTTPURLResponse response(std::nullopt, head.status(), head.version(), head.fields());
  require(response.expectedContentLength() >= -1);
}

void follow(const std::string& place) {
  const Hop hop{"https://u:p@x.org/a/b?c", "POST", {{"Authorization", "s"}}, std::nullopt};
  const NextHop next = nextHop(hop, 302, place);
  if (!next.hop) return;
  const std::string origin = originOf(next.hop->address);
  require(!origin.empty());
  require(origin == "https://x.org:443" || next.hop->fields.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  readHead(text);
  if (text.find('\0') == std::string::npos) follow(text);
  static_cast<void>(dataAddressIn(text));
  return 0;
}
