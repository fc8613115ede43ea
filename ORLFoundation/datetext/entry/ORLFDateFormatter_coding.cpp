// How date fields' formatters are archived: as their base class, of which the style is reset.

#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/platform/archive/NSCoder.h>

namespace ORLFoundation {

const NSCodingClass& ORLFDateFormatter::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<ORLFDateFormatter>(
      "ORLFDateFormatter", &NSDateFormatter::codingClass());
  return record;
}

std::shared_ptr<ORLFDateFormatter> ORLFDateFormatter::initWithCoder(NSCoder& coder) {
  auto formatter = std::make_shared<ORLFDateFormatter>(Uninitialized());
  formatter->readSettings(coder);
  formatter->setUp();
  return formatter;
}

}  // namespace ORLFoundation
