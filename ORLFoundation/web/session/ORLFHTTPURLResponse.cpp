#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

namespace ORLFoundation {
namespace {

/// Never destroyed, so that it can be used while the process ends.
const NSDateFormatter& headerDates() {
  static const NSDateFormatter* const dates = [] {
    auto* const made = new NSDateFormatter;
    made->setLocale(std::make_shared<NSLocale>("en_US_POSIX"));
    made->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
    made->setDateFormat("EEE',' dd MMM yyyy HH':'mm':'ss 'GMT'");
    return made;
  }();
  return *dates;
}

}  // namespace

std::shared_ptr<NSHTTPURLResponse> orlfHTTPURLResponse(
    const std::shared_ptr<NSURLResponse>& response) {
  return std::dynamic_pointer_cast<NSHTTPURLResponse>(response);
}

std::optional<NSDate> orlfLastModifiedDate(const NSHTTPURLResponse& response) {
  const auto text = response.valueForHTTPHeaderField("Last-Modified");
  return text ? headerDates().dateFromString(*text) : std::nullopt;
}

}  // namespace ORLFoundation
