#include <ORLFoundation/platform/net/internal/CheckedFields.h>

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation::internal::net {
namespace {

void require(bool isAllowed, const char* reason) {
  if (!isAllowed) throw NSException(NSInvalidArgumentException, reason);
}

}  // namespace

void requireMethod(std::string_view method) {
  require(NSIsHTTPToken(method), "an HTTP method is one word, without blanks and line ends");
}

void requireField(std::string_view name, std::string_view value) {
  require(NSIsHTTPToken(name), "the name of a header field is one word");
  require(NSIsHTTPFieldValue(value), "the value of a header field holds CR, LF or NUL");
}

}  // namespace ORLFoundation::internal::net
