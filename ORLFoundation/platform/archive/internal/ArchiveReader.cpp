#include <ORLFoundation/platform/archive/internal/ArchiveReader.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/internal/KeyedArchive.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace ORLFoundation::internal::archive {

using plist::PropertyListFault;
using plist::PropertyListKind;

namespace {

constexpr std::uint64_t kMostWeight = std::uint64_t{1} << 62;
constexpr std::uint64_t kLeastHashing = std::uint64_t{1} << 20;
constexpr std::uint64_t kHashingPerObject = 16;

bool isAllowed(const NSCodingClass& record, NSCodingClasses allowed) noexcept {
  return std::any_of(allowed.begin(), allowed.end(),
                     [&](const NSCodingClass* each) { return record.isSubclassOf(*each); });
}

}  // namespace

ArchiveReader::ArchiveReader(NSCoder& coder, const NSData& data)
    : coder_(coder),
      document_(data),
      table_(document_.table()),
      text_(table_.size()),
      hashing_(kLeastHashing + kHashingPerObject * document_.objectCount()),
      frame_{.dictionary = document_.top()} {}

void ArchiveReader::fail(std::string_view what) {
  if (error_) return;
  NSFillErrorSlot(&error_, NSCocoaErrorDomain, NSCoderReadCorruptError, what);
}

std::optional<ArchiveReader::Index> ArchiveReader::value(std::string_view key) const {
  if (isOwnKey(key)) return table_.valueForKey(frame_.dictionary, escapedKey(key));
  return table_.valueForKey(frame_.dictionary, key);
}

std::int64_t ArchiveReader::integer(std::string_view key) const {
  const auto node = value(key);
  if (!node) return 0;
  if (table_.kind(*node) == PropertyListKind::UnsignedInteger)
    throw PropertyListFault("An integer does not fit 64 bits.");
  expect(*node, PropertyListKind::Integer, key);
  return table_.integer(*node);
}

bool ArchiveReader::boolean(std::string_view key) const {
  const auto node = value(key);
  if (!node) return false;
  if (table_.kind(*node) == PropertyListKind::Integer) return table_.integer(*node) != 0;
  expect(*node, PropertyListKind::Boolean, key);
  return table_.boolean(*node);
}

double ArchiveReader::real(std::string_view key) const {
  const auto node = value(key);
  if (!node) return 0;
  expect(*node, PropertyListKind::Real, key);
  return table_.real(*node);
}

std::optional<std::string_view> ArchiveReader::text(std::string_view key, PropertyListKind kind) {
  const auto node = value(key);
  if (!node) return std::nullopt;
  expect(*node, kind, key);
  return textOf(*node);
}

id ArchiveReader::object(NSCodingClasses allowed, std::string_view key) {
  const auto node = value(key);
  if (!node) return {};
  expect(*node, PropertyListKind::UID, key);
  return objectAt(table_.uid(*node), allowed);
}

std::optional<std::vector<id>> ArchiveReader::objects(std::string_view key, bool areKeys) {
  const auto node = value(key);
  if (!node) return std::nullopt;
  expect(*node, PropertyListKind::Array, key);
  const std::uint64_t weightBefore = frame_.weight;
  std::vector<id> members;
  members.reserve(table_.members(*node).size());
  for (const Index member : table_.members(*node)) {
    expect(member, PropertyListKind::UID, key);
    members.push_back(objectAt(table_.uid(member), frame_.allowed));
    if (error_) return std::nullopt;
    if (members.back().isNil()) throw PropertyListFault("A collection holds nil.");
  }
  if (areKeys) takeHashing(frame_.weight - weightBefore);
  return members;
}

void ArchiveReader::announce(const std::shared_ptr<NSObject>& object) {
  if (frame_.uid != 0) made_[frame_.uid].value = object;
}

void ArchiveReader::expect(Index node, PropertyListKind kind, std::string_view key) const {
  if (table_.kind(node) != kind)
    throw PropertyListFault("The value of " + std::string(key) + " is of another kind.");
}

std::string_view ArchiveReader::textOf(Index node) {
  const std::string_view text = table_.text(node);
  if (!text_.take(text.size())) throw PropertyListFault("The archive repeats too much text.");
  return text;
}

// Hashing follows every reference, however often it leads to the same list.
void ArchiveReader::takeHashing(std::uint64_t weight) {
  if (weight > hashing_) throw PropertyListFault("The keys of a collection are too large.");
  hashing_ -= weight;
}

void ArchiveReader::addWeight(std::uint64_t weight) noexcept {
  frame_.weight = std::min(kMostWeight, frame_.weight + weight);
}

id ArchiveReader::objectAt(Index uid, NSCodingClasses allowed) {
  if (uid >= document_.objectCount()) throw PropertyListFault("A reference leads nowhere.");
  if (document_.isNull(uid)) return {};
  const NSCodingClass& record = document_.classOf(uid);
  if (!isAllowed(record, allowed)) {
    id decimal = decimalInOtherForm(document_.entry(uid), allowed);
    if (decimal) return decimal;
    throw PropertyListFault("The class " + record.name() + " is not allowed.");
  }
  if (!record.supportsSecureCoding())
    throw PropertyListFault("The class " + record.name() + " does not support secure coding.");
  if (table_.kind(document_.entry(uid)) == PropertyListKind::Dictionary)
    return keyedObject(uid, record, allowed);
  addWeight(1);
  return directObject(document_.entry(uid));
}

id ArchiveReader::directObject(Index entry) {
  switch (table_.kind(entry)) {
    case PropertyListKind::Boolean:
      return table_.boolean(entry);
    case PropertyListKind::Integer:
      return table_.integer(entry);
    case PropertyListKind::UnsignedInteger:
      return table_.unsignedInteger(entry);
    case PropertyListKind::Real:
      return table_.real(entry);
    case PropertyListKind::Date:
      if (!std::isfinite(table_.real(entry))) throw PropertyListFault("A date has no time.");
      return NSDate::dateWithTimeIntervalSinceReferenceDate(table_.real(entry));
    case PropertyListKind::Data:
      return NSData(textOf(entry));
    default:
      return textOf(entry);
  }
}

// Some writers store decimals as plain numbers or texts. Taken only where decimals are allowed by
// name: whoever allows numbers gets no text. nil for anything else.
id ArchiveReader::decimalInOtherForm(Index entry, NSCodingClasses allowed) const {
  if (std::find(allowed.begin(), allowed.end(), &NSCodingClassOf<NSDecimalNumber>()) ==
      allowed.end())
    return {};
  std::optional<NSDecimal> decimal;
  const PropertyListKind kind = table_.kind(entry);
  if (kind == PropertyListKind::Integer) decimal = NSDecimal::fromInteger(table_.integer(entry));
  if (kind == PropertyListKind::UnsignedInteger)
    decimal = NSDecimal::fromUnsigned(table_.unsignedInteger(entry));
  if (kind == PropertyListKind::Real) decimal = NSNumber(table_.real(entry)).decimalValue();
  if (kind == PropertyListKind::String) decimal = NSDecimal::parse(table_.text(entry));
  if (!decimal || decimal->isNaN()) return {};
  NSLog("NSKeyedUnarchiver: a decimal is stored as a plain number or text");
  return *decimal;
}

id ArchiveReader::keyedObject(Index uid, const NSCodingClass& record, NSCodingClasses allowed) {
  const auto [place, isNew] = made_.try_emplace(uid);
  if (!isNew) {
    if (place->second.isBusy && place->second.value.isNil())
      throw PropertyListFault("An object holds itself.");
    addWeight(place->second.weight);
    return place->second.value;
  }
  if (depth_ >= kDeepestNesting) throw PropertyListFault("The objects are nested too deep.");

  const Frame outer =
      std::exchange(frame_, {.dictionary = document_.entry(uid), .uid = uid, .allowed = allowed});
  ++depth_;
  id value = record.initWithCoder()(coder_);
  --depth_;
  const std::uint64_t weight = frame_.weight;
  frame_ = outer;
  addWeight(weight);
  if (error_) return {};
  if (value.isNil())
    throw PropertyListFault("An object of class " + record.name() + " is damaged.");
  made_[uid] = {.value = value, .isBusy = false, .weight = weight};
  return value;
}

}  // namespace ORLFoundation::internal::archive
