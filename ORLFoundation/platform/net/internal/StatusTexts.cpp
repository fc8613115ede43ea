#include <ORLFoundation/platform/net/internal/StatusTexts.h>

#include <algorithm>
#include <iterator>

namespace ORLFoundation::internal::net {
namespace {

struct Named {
  NSInteger status;
  std::string_view text;
};

constexpr Named kStatuses[] = {
    {100, "continue"},
    {101, "switching protocols"},
    {200, "no error"},
    {201, "created"},
    {202, "accepted"},
    {203, "non-authoritative information"},
    {204, "no content"},
    {205, "reset content"},
    {206, "partial content"},
    {300, "multiple choices"},
    {301, "moved permanently"},
    {302, "found"},
    {303, "see other"},
    {304, "not modified"},
    {305, "needs proxy"},
    {307, "temporarily redirected"},
    {308, "permanently redirected"},
    {400, "bad request"},
    {401, "unauthorized"},
    {402, "payment required"},
    {403, "forbidden"},
    {404, "not found"},
    {405, "method not allowed"},
    {406, "unacceptable"},
    {407, "proxy authentication required"},
    {408, "request timed out"},
    {409, "conflict"},
    {410, "no longer exists"},
    {411, "length required"},
    {412, "precondition failed"},
    {413, "request too large"},
    {414, "requested URL too long"},
    {415, "unsupported media type"},
    {416, "requested range not satisfiable"},
    {417, "expectation failed"},
    {429, "too many requests"},
    {500, "internal server error"},
    {501, "unimplemented"},
    {502, "bad gateway"},
    {503, "service unavailable"},
    {504, "gateway timed out"},
    {505, "unsupported version"},
};

constexpr std::string_view kHundreds[] = {"informational", "success", "redirected", "client error",
                                          "server error"};

}  // namespace

std::string_view textOfStatus(NSInteger status) noexcept {
  const auto* const named = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                         [&](const Named& row) { return row.status == status; });
  if (named != std::end(kStatuses)) return named->text;
  if (status < 100 || status > 599) return "unknown";
  return kHundreds[status / 100 - 1];
}

}  // namespace ORLFoundation::internal::net
