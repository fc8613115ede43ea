// Reads any bytes as an archive in which all classes are allowed. What is read is archived again
// and read again.

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>

using namespace ORLFoundation;

namespace {

id unarchived(const NSData& data, NSErrorSlot error = nullptr) {
  return NSKeyedUnarchiver::unarchivedObjectOfClasses<
      NSArray, NSDictionary, NSSet, std::string, NSNumber, NSDecimalNumber, NSDate, NSData, NSURL,
      NSUUID, NSNull, ORLFDateRecurrencePeriod, ORLFDateRecurrenceDayOfWeek, ORLFDateRecurrenceEnd,
      ORLFDateRecurrenceRule, ORLFDecimalNumberHandler, ORLFAmortizationPlanSegment,
      ORLFAmortizationPlan>(data, error);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NSSetLogSink([](std::string_view) {});
  std::shared_ptr<const NSError> error;
  const id object = unarchived(NSData(std::span(data, size)), &error);
  if (object.isNil() != (error != nullptr)) std::abort();
  if (object.isNil()) return 0;
  const auto again = NSKeyedArchiver::archivedDataWithRootObject(object, true);
  if (!again) std::abort();
  if (unarchived(*again).isNil()) std::abort();
  return 0;
}
