
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>

#include <ORLFoundation/platform/archive/internal/ArchiveDocument.h>
#include <ORLFoundation/platform/archive/internal/KeyedArchive.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <unordered_map>
#include <utility>

namespace ORLFoundation {

namespace archive = internal::archive;
using internal::PropertyListFault;
using internal::PropertyListKind;
using internal::PropertyListTable;

// Faults are thrown inside and caught where the coder's operations begin, so that none passes
// through an object's `initWithCoder`.
class NSKeyedUnarchiver::Reader {
 public:
  using Index = PropertyListTable::Index;

  explicit Reader(const NSData& data)
      : document_(data),
        table_(document_.table()),
        text_(table_.size()),
        hashing_(kLeastHashing + kHashingPerObject * document_.objectCount()),
        frame_{.dictionary = document_.top()} {}

  /// What objects read themselves from: the unarchiver around this reader.
  NSCoder* coder = nullptr;

  // Runs a step unless the coder has failed, and fails it with the step's fault.
  template <class Step>
  auto run(Step&& step) -> decltype(step()) {
    using Result = decltype(step());
    if (error_) return Result{};
    try {
      return step();
    } catch (const PropertyListFault& fault) {
      fail(fault.what());
    } catch (const NSException& exception) {
      fail(exception.what());
    }
    return Result{};
  }

  void fail(std::string_view what) {
    if (error_) return;
    NSFillErrorSlot(&error_, NSCocoaErrorDomain, NSCoderReadCorruptError, what);
  }
  [[nodiscard]] const std::shared_ptr<const NSError>& error() const noexcept { return error_; }

  [[nodiscard]] std::optional<Index> value(std::string_view key) const {
    if (archive::isOwnKey(key))
      return table_.valueForKey(frame_.dictionary, archive::escapedKey(key));
    return table_.valueForKey(frame_.dictionary, key);
  }

  std::int64_t integer(std::string_view key) {
    const auto node = value(key);
    if (!node) return 0;
    if (table_.kind(*node) == PropertyListKind::UnsignedInteger)
      throw PropertyListFault("An integer does not fit 64 bits.");
    expect(*node, PropertyListKind::Integer, key);
    return table_.integer(*node);
  }

  bool boolean(std::string_view key) {
    const auto node = value(key);
    if (!node) return false;
    if (table_.kind(*node) == PropertyListKind::Integer) return table_.integer(*node) != 0;
    expect(*node, PropertyListKind::Boolean, key);
    return table_.boolean(*node);
  }

  double real(std::string_view key) {
    const auto node = value(key);
    if (!node) return 0;
    expect(*node, PropertyListKind::Real, key);
    return table_.real(*node);
  }

  std::optional<std::string_view> text(std::string_view key, PropertyListKind kind) {
    const auto node = value(key);
    if (!node) return std::nullopt;
    expect(*node, kind, key);
    return textOf(*node);
  }

  id object(NSCodingClasses allowed, std::string_view key) {
    const auto node = value(key);
    if (!node) return {};
    expect(*node, PropertyListKind::UID, key);
    return objectAt(table_.uid(*node), allowed);
  }

  std::optional<std::vector<id>> objects(std::string_view key, bool areKeys) {
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

  void announce(const std::shared_ptr<NSObject>& object) {
    if (frame_.uid != 0) made_[frame_.uid].value = object;
  }

 private:
  // The object that is being read, and the classes that are allowed in it.
  struct Frame {
    Index dictionary = 0;
    Index uid = 0;
    NSCodingClasses allowed = {};
    std::uint64_t weight = 1;
  };
  // An object that was read, or is: then its value is what it announced, or nil.
  struct Made {
    id value;
    bool isBusy = true;
    std::uint64_t weight = 1;  // how many values it would be without shared references
  };
  static constexpr std::uint64_t kMostWeight = std::uint64_t{1} << 62;
  static constexpr std::uint64_t kLeastHashing = std::uint64_t{1} << 20;
  static constexpr std::uint64_t kHashingPerObject = 16;

  void expect(Index node, PropertyListKind kind, std::string_view key) const {
    if (table_.kind(node) != kind)
      throw PropertyListFault("The value of " + std::string(key) + " is of another kind.");
  }

  std::string_view textOf(Index node) {
    const std::string_view text = table_.text(node);
    if (!text_.take(text.size())) throw PropertyListFault("The archive repeats too much text.");
    return text;
  }

  // Hashing follows every reference, however often it leads to the same list.
  void takeHashing(std::uint64_t weight) {
    if (weight > hashing_) throw PropertyListFault("The keys of a collection are too large.");
    hashing_ -= weight;
  }

  static bool isAllowed(const NSCodingClass& record, NSCodingClasses allowed) noexcept {
    return std::any_of(allowed.begin(), allowed.end(),
                       [&](const NSCodingClass* each) { return record.isSubclassOf(*each); });
  }

  id objectAt(Index uid, NSCodingClasses allowed) {
    if (uid >= document_.objectCount()) throw PropertyListFault("A reference leads nowhere.");
    if (document_.isNull(uid)) return {};
    const NSCodingClass& record = document_.classOf(uid);
    if (!isAllowed(record, allowed)) {
      if (const auto decimal = decimalInOtherForm(document_.entry(uid), allowed)) return *decimal;
      throw PropertyListFault("The class " + record.name() + " is not allowed.");
    }
    if (!record.supportsSecureCoding())
      throw PropertyListFault("The class " + record.name() + " does not support secure coding.");
    if (table_.kind(document_.entry(uid)) == PropertyListKind::Dictionary)
      return keyedObject(uid, record, allowed);
    addWeight(1);
    return directObject(document_.entry(uid));
  }

  id directObject(Index entry) {
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
  // name: whoever allows numbers gets no text.
  std::optional<NSDecimal> decimalInOtherForm(Index entry, NSCodingClasses allowed) {
    std::optional<NSDecimal> decimal;
    if (std::find(allowed.begin(), allowed.end(), &NSCodingClassOf<NSDecimalNumber>()) ==
        allowed.end())
      return decimal;
    const PropertyListKind kind = table_.kind(entry);
    if (kind == PropertyListKind::Integer) decimal = NSDecimal::fromInteger(table_.integer(entry));
    if (kind == PropertyListKind::UnsignedInteger)
      decimal = NSDecimal::fromUnsigned(table_.unsignedInteger(entry));
    if (kind == PropertyListKind::Real) decimal = NSNumber(table_.real(entry)).decimalValue();
    if (kind == PropertyListKind::String) decimal = NSDecimal::parse(table_.text(entry));
    if (!decimal || decimal->isNaN()) return std::nullopt;
    NSLog("NSKeyedUnarchiver: a decimal is stored as a plain number or text");
    return decimal;
  }

  id keyedObject(Index uid, const NSCodingClass& record, NSCodingClasses allowed) {
    const auto [place, isNew] = made_.try_emplace(uid);
    if (!isNew) {
      if (place->second.isBusy && place->second.value.isNil())
        throw PropertyListFault("An object holds itself.");
      addWeight(place->second.weight);
      return place->second.value;
    }
    if (depth_ >= archive::kDeepestNesting)
      throw PropertyListFault("The objects are nested too deep.");

    const Frame outer =
        std::exchange(frame_, {.dictionary = document_.entry(uid), .uid = uid, .allowed = allowed});
    ++depth_;
    id value = record.initWithCoder()(*coder);
    --depth_;
    const std::uint64_t weight = frame_.weight;
    frame_ = outer;
    addWeight(weight);
    if (error_) return {};
    if (value.isNil())
      throw PropertyListFault("An object of class " + record.name() + " is damaged.");
    Made& made = made_[uid];
    made = {.value = value, .isBusy = false, .weight = weight};
    return value;
  }

  void addWeight(std::uint64_t weight) noexcept {
    frame_.weight = std::min(kMostWeight, frame_.weight + weight);
  }

  internal::ArchiveDocument document_;
  const PropertyListTable& table_;
  internal::PropertyListTextBudget text_;
  std::uint64_t hashing_;
  Frame frame_;
  std::size_t depth_ = 0;
  std::unordered_map<Index, Made> made_;
  std::shared_ptr<const NSError> error_;
};

NSKeyedUnarchiver::NSKeyedUnarchiver(std::unique_ptr<Reader> reader) : reader_(std::move(reader)) {
  reader_->coder = this;
}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

std::shared_ptr<NSKeyedUnarchiver> NSKeyedUnarchiver::initForReadingFromData(const NSData& data,
                                                                             NSErrorSlot error) {
  try {
    return std::shared_ptr<NSKeyedUnarchiver>(
        new NSKeyedUnarchiver(std::make_unique<Reader>(data)));
  } catch (const PropertyListFault& fault) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSCoderReadCorruptError, fault.what());
    return nullptr;
  }
}

id NSKeyedUnarchiver::unarchivedObject(NSCodingClasses ofClasses, const NSData& fromData,
                                       NSErrorSlot error) {
  const auto coder = initForReadingFromData(fromData, error);
  if (!coder) return {};
  id root = coder->decodeObject(ofClasses, NSKeyedArchiveRootObjectKey);
  if (root.isNil()) coder->failWithError("The archive holds no object.");
  if (!coder->error()) return root;
  if (error != nullptr) *error = coder->error();
  return {};
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return reader_->value(key).has_value();
}
std::int64_t NSKeyedUnarchiver::decodeInt64(std::string_view forKey) {
  return reader_->run([&] { return reader_->integer(forKey); });
}
bool NSKeyedUnarchiver::decodeBool(std::string_view forKey) {
  return reader_->run([&] { return reader_->boolean(forKey); });
}
double NSKeyedUnarchiver::decodeDouble(std::string_view forKey) {
  return reader_->run([&] { return reader_->real(forKey); });
}
std::optional<NSData> NSKeyedUnarchiver::decodeBytes(std::string_view forKey) {
  return reader_->run([&]() -> std::optional<NSData> {
    const auto bytes = reader_->text(forKey, PropertyListKind::Data);
    return bytes ? std::optional<NSData>(NSData(*bytes)) : std::nullopt;
  });
}
std::optional<std::string> NSKeyedUnarchiver::decodeText(std::string_view forKey) {
  return reader_->run([&]() -> std::optional<std::string> {
    const auto text = reader_->text(forKey, PropertyListKind::String);
    return text ? std::optional<std::string>(*text) : std::nullopt;
  });
}
std::optional<std::vector<id>> NSKeyedUnarchiver::decodeObjects(std::string_view forKey) {
  return reader_->run([&] { return reader_->objects(forKey, false); });
}
std::optional<std::vector<id>> NSKeyedUnarchiver::decodeKeys(std::string_view forKey) {
  return reader_->run([&] { return reader_->objects(forKey, true); });
}
id NSKeyedUnarchiver::decodeObject(NSCodingClasses ofClasses, std::string_view forKey) {
  return reader_->run([&] { return reader_->object(ofClasses, forKey); });
}
void NSKeyedUnarchiver::setObjectBeingDecoded(const std::shared_ptr<NSObject>& object) {
  reader_->announce(object);
}
void NSKeyedUnarchiver::failWithError(std::string_view localizedDescription) {
  reader_->fail(localizedDescription);
}
std::shared_ptr<const NSError> NSKeyedUnarchiver::error() const { return reader_->error(); }

}  // namespace ORLFoundation
