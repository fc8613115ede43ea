
#include <ORLFoundation/platform/archive/internal/StandardCoding.h>

#include <ORLFoundation/platform/archive/internal/DecimalCoding.h>
#include <ORLFoundation/platform/archive/internal/ResolvedAddress.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

id failed(NSCoder& coder, std::string_view what) {
  coder.failWithError(what);
  return {};
}

id decodeString(NSCoder& coder) { return coder.decodeText("NS.string"); }
id decodeData(NSCoder& coder) { return coder.decodeBytes("NS.data"); }
id decodeNull(NSCoder&) { return NSNull::null(); }

id decodeDate(NSCoder& coder) {
  const double seconds = coder.decodeDouble("NS.time");
  if (!coder.containsValueForKey("NS.time") || !std::isfinite(seconds))
    return failed(coder, "A date has no time.");
  return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

id decodeURL(NSCoder& coder) {
  const auto base = coder.decodeObjectOfClass<NSURL>("NS.base");
  const auto relative = coder.decodeObjectOfClass<std::string>("NS.relative");
  const auto url =
      relative ? internal::archive::resolvedAddress(base, *relative) : std::optional<NSURL>();
  return url ? id(*url) : failed(coder, "An address is damaged.");
}

id decodeUUID(NSCoder& coder) {
  NSUUID::Bytes bytes{};
  const auto data = coder.decodeBytes("NS.uuidbytes");
  if (!data || data->length() != bytes.size())
    return failed(coder, "An identifier has another length than 16 bytes.");
  std::copy(data->bytes().begin(), data->bytes().end(), bytes.begin());
  return NSUUID(bytes);
}

template <class Array>
id decodeArray(NSCoder& coder) {
  auto members = coder.decodeObjects("NS.objects");
  if (!members) return failed(coder, "A list has no members.");
  return std::make_shared<Array>(std::move(*members));
}

template <class Set>
id decodeSet(NSCoder& coder) {
  const auto members = coder.decodeKeys("NS.objects");
  if (!members) return failed(coder, "A set has no members.");
  return std::make_shared<Set>(*members);
}

template <class Dictionary>
id decodeDictionary(NSCoder& coder) {
  auto keys = coder.decodeKeys("NS.keys");
  auto values = coder.decodeObjects("NS.objects");
  if (!keys || !values || keys->size() != values->size())
    return failed(coder, "A dictionary has not as many values as keys.");
  NSDictionary::Entries entries;
  entries.reserve(keys->size());
  for (std::size_t entry = 0; entry < keys->size(); ++entry)
    entries.emplace_back(std::move((*keys)[entry]), std::move((*values)[entry]));
  return std::make_shared<Dictionary>(entries);
}

// A number is written directly, never with fields.
id decodeNumber(NSCoder& coder) { return failed(coder, "A number is damaged."); }

template <NSCodingClass::InitWithCoder decode>
struct Standard {
  static bool supportsSecureCoding() { return true; }
  static id initWithCoder(NSCoder& coder) { return decode(coder); }
};

template <NSCodingClass::InitWithCoder decode>
const NSCodingClass& standard(std::string_view name, const NSCodingClass* superclass = nullptr) {
  return NSCodingClass::define<Standard<decode>>(name, superclass);
}

struct StandardClasses {
  const NSCodingClass& string = standard<decodeString>("NSString");
  const NSCodingClass& mutableString = standard<decodeString>("NSMutableString", &string);
  const NSCodingClass& data = standard<decodeData>("NSData");
  const NSCodingClass& mutableData = standard<decodeData>("NSMutableData", &data);
  const NSCodingClass& value = standard<decodeNumber>("NSValue");
  const NSCodingClass& number = standard<decodeNumber>("NSNumber", &value);
  const NSCodingClass& decimal =
      standard<internal::archive::decodeDecimal>("NSDecimalNumber", &number);
  // The class that decimals are written under.
  const NSCodingClass& writtenDecimal =
      standard<internal::archive::decodeDecimal>("NSDecimalNumberPlaceholder", &decimal);
  const NSCodingClass& date = standard<decodeDate>("NSDate");
  const NSCodingClass& url = standard<decodeURL>("NSURL");
  const NSCodingClass& uuid = standard<decodeUUID>("NSUUID");
  const NSCodingClass& null = standard<decodeNull>("NSNull");
  const NSCodingClass& array = standard<decodeArray<NSArray>>("NSArray");
  const NSCodingClass& mutableArray =
      standard<decodeArray<NSMutableArray>>("NSMutableArray", &array);
  const NSCodingClass& set = standard<decodeSet<NSSet>>("NSSet");
  const NSCodingClass& mutableSet = standard<decodeSet<NSMutableSet>>("NSMutableSet", &set);
  const NSCodingClass& dictionary = standard<decodeDictionary<NSDictionary>>("NSDictionary");
  const NSCodingClass& mutableDictionary =
      standard<decodeDictionary<NSMutableDictionary>>("NSMutableDictionary", &dictionary);
};

const StandardClasses& classes() {
  static const StandardClasses classes;
  return classes;
}

}  // namespace

template <>
const NSCodingClass& NSCodingClassOf<std::string>() {
  return classes().string;
}
template <>
const NSCodingClass& NSCodingClassOf<NSNumber>() {
  return classes().number;
}
template <>
const NSCodingClass& NSCodingClassOf<NSDecimalNumber>() {
  return classes().decimal;
}
template <>
const NSCodingClass& NSCodingClassOf<NSDate>() {
  return classes().date;
}
template <>
const NSCodingClass& NSCodingClassOf<NSData>() {
  return classes().data;
}
template <>
const NSCodingClass& NSCodingClassOf<NSURL>() {
  return classes().url;
}
template <>
const NSCodingClass& NSCodingClassOf<NSUUID>() {
  return classes().uuid;
}
template <>
const NSCodingClass& NSCodingClassOf<NSNull>() {
  return classes().null;
}
template <>
const NSCodingClass& NSCodingClassOf<NSArray>() {
  return classes().array;
}
template <>
const NSCodingClass& NSCodingClassOf<NSDictionary>() {
  return classes().dictionary;
}
template <>
const NSCodingClass& NSCodingClassOf<NSSet>() {
  return classes().set;
}

namespace internal::archive {

void defineStandardClasses() { static_cast<void>(classes()); }

const NSCodingClass& mutableStringClass() { return classes().mutableString; }

const NSCodingClass* standardClassOf(const id& value) {
  if (value.isNull()) return &classes().null;
  if (value.get<NSNumber>() != nullptr) return &classes().writtenDecimal;
  if (value.get<NSDate>() != nullptr) return &classes().date;
  if (value.get<NSURL>() != nullptr) return &classes().url;
  if (value.get<NSUUID>() != nullptr) return &classes().uuid;
  if (value.as<NSMutableArray>()) return &classes().mutableArray;
  if (value.as<NSArray>()) return &classes().array;
  if (value.as<NSMutableDictionary>()) return &classes().mutableDictionary;
  if (value.as<NSDictionary>()) return &classes().dictionary;
  if (value.as<NSMutableSet>()) return &classes().mutableSet;
  if (value.as<NSSet>()) return &classes().set;
  return nullptr;
}

void encodeStandard(const id& value, NSCoder& coder) {
  if (const auto* number = value.get<NSNumber>()) {
    encodeDecimal(number->decimalValue(), coder);
  } else if (const auto* date = value.get<NSDate>()) {
    coder.encodeDouble(date->timeIntervalSinceReferenceDate(), "NS.time");
  } else if (const auto* url = value.get<NSURL>()) {
    coder.encodeObject(nullptr, "NS.base");
    coder.encodeObject(url->absoluteString(), "NS.relative");
  } else if (const auto* uuid = value.get<NSUUID>()) {
    coder.encodeBytes(NSData(std::span<const std::uint8_t>(uuid->UUIDBytes())), "NS.uuidbytes");
  } else if (const auto array = value.as<NSArray>()) {
    coder.encodeObjects(array->members(), "NS.objects");
  } else if (const auto set = value.as<NSSet>()) {
    coder.encodeObjects(set->allObjects(), "NS.objects");
  } else if (const auto dictionary = value.as<NSDictionary>()) {
    coder.encodeObjects(dictionary->allKeys(), "NS.keys");
    coder.encodeObjects(dictionary->allValues(), "NS.objects");
  }
}

}  // namespace internal::archive
}  // namespace ORLFoundation
