
#include <ORLFoundation/platform/archive/NSCoder.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <limits>

namespace ORLFoundation {
namespace {

[[noreturn]] void raiseWrongDirection(const char* operation) {
  throw NSException(NSInvalidArgumentException,
                    std::string("The coder does not take ") + operation + ".");
}

}  // namespace

void NSCoder::encodeObject(const id&, std::string_view) { raiseWrongDirection("encodeObject"); }
void NSCoder::encodeInt64(std::int64_t, std::string_view) { raiseWrongDirection("encodeInt64"); }
void NSCoder::encodeBool(bool, std::string_view) { raiseWrongDirection("encodeBool"); }
void NSCoder::encodeDouble(double, std::string_view) { raiseWrongDirection("encodeDouble"); }
void NSCoder::encodeBytes(const NSData&, std::string_view) { raiseWrongDirection("encodeBytes"); }
void NSCoder::encodeObjects(const std::vector<id>&, std::string_view) {
  raiseWrongDirection("encodeObjects");
}

bool NSCoder::containsValueForKey(std::string_view) const {
  raiseWrongDirection("containsValueForKey");
}
std::int64_t NSCoder::decodeInt64(std::string_view) { raiseWrongDirection("decodeInt64"); }
bool NSCoder::decodeBool(std::string_view) { raiseWrongDirection("decodeBool"); }
double NSCoder::decodeDouble(std::string_view) { raiseWrongDirection("decodeDouble"); }
std::optional<NSData> NSCoder::decodeBytes(std::string_view) { raiseWrongDirection("decodeBytes"); }
std::optional<std::string> NSCoder::decodeText(std::string_view) {
  raiseWrongDirection("decodeText");
}
std::optional<std::vector<id>> NSCoder::decodeObjects(std::string_view) {
  raiseWrongDirection("decodeObjects");
}
std::optional<std::vector<id>> NSCoder::decodeKeys(std::string_view) {
  raiseWrongDirection("decodeKeys");
}
id NSCoder::decodeObject(NSCodingClasses, std::string_view) { raiseWrongDirection("decodeObject"); }
void NSCoder::setObjectBeingDecoded(const std::shared_ptr<NSObject>&) {
  raiseWrongDirection("setObjectBeingDecoded");
}
void NSCoder::failWithError(std::string_view) { raiseWrongDirection("failWithError"); }

std::int32_t NSCoder::decodeInt32(std::string_view forKey) {
  const std::int64_t value = decodeInt64(forKey);
  using Limits = std::numeric_limits<std::int32_t>;
  if (value < Limits::min() || value > Limits::max()) {
    failWithError("An integer does not fit 32 bits.");
    return 0;
  }
  return static_cast<std::int32_t>(value);
}

}  // namespace ORLFoundation
