
#include <ORLFoundation/support/device/ORLFUTTypeConstants.h>

#include <ORLFoundation/platform/log/ORLFFatalError.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

std::shared_ptr<UTType> typeOrStop(std::shared_ptr<UTType> type, std::string_view fault,
                                   std::string_view name) {
  if (!type) ORLFFatalError(std::string(fault).append(name), "ORLFUTTypeConstants.cpp", __LINE__);
  return type;
}

std::shared_ptr<UTType> typeOfExtension(std::string_view name) {
  return typeOrStop(UTType::typeWithFilenameExtension(name),
                    "Can't find UTType with filenameExtension: ", name);
}

std::shared_ptr<UTType> typeOfIdentifier(std::string_view name) {
  return typeOrStop(UTType::typeWithIdentifier(name), "Unknown UTType: ", name);
}

}  // namespace

std::shared_ptr<UTType> _ORLFUTTypeConstants::qif() { return typeOfExtension("qif"); }
std::shared_ptr<UTType> _ORLFUTTypeConstants::qmtf() { return typeOfExtension("qmtf"); }
std::shared_ptr<UTType> _ORLFUTTypeConstants::qfx() { return typeOfExtension("qfx"); }
std::shared_ptr<UTType> _ORLFUTTypeConstants::txf() { return typeOfExtension("txf"); }
std::shared_ptr<UTType> _ORLFUTTypeConstants::ofx() { return typeOfIdentifier("public.ofx"); }

std::shared_ptr<UTType> _ORLFUTTypeConstants::csv() {
  constexpr std::string_view kIdentifier = "public.comma-separated-values-text";
  if (auto type = UTType::typeWithIdentifier(kIdentifier)) return type;
  return UTType::exportedTypeWithIdentifier(kIdentifier, "public.delimited-values-text");
}

std::shared_ptr<UTType> _ORLFUTTypeConstants::voucher() {
  return UTType::exportedTypeWithIdentifier("com.orrelbooks.subscription-voucher", "public.data");
}

const std::shared_ptr<UTType> kORLFUTTypeQIF = _ORLFUTTypeConstants::qif();
const std::shared_ptr<UTType> kORLFUTTypeQMTF = _ORLFUTTypeConstants::qmtf();
const std::shared_ptr<UTType> kORLFUTTypeOFX = _ORLFUTTypeConstants::ofx();
const std::shared_ptr<UTType> kORLFUTTypeQFX = _ORLFUTTypeConstants::qfx();
const std::shared_ptr<UTType> kORLFUTTypeCSV = _ORLFUTTypeConstants::csv();
const std::shared_ptr<UTType> kORLFUTTypeTXF = _ORLFUTTypeConstants::txf();
const std::shared_ptr<UTType> kORLFUTTypeOrrelbooksSubscriptionVoucher =
    _ORLFUTTypeConstants::voucher();

bool conforms(const UTType& type, std::span<const std::shared_ptr<UTType>> to) {
  return std::ranges::any_of(
      to, [&type](const auto& each) { return each && type.conformsToType(*each); });
}

bool conforms(const UTType& type, std::initializer_list<std::shared_ptr<UTType>> to) {
  return conforms(type, std::span(to.begin(), to.size()));
}

}  // namespace ORLFoundation
