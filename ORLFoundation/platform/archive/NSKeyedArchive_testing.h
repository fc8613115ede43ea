/// What the tests of archives share: small classes made for the purpose, archives written and read
/// in a word, and archives put together by hand.
#pragma once

#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <ORLFoundation/platform/plist/NSPropertyList_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlftest {

using namespace ORLFoundation;

/// Fields of every kind, and links that may go round.
class Sample : public NSObject, public NSSecureCoding {
 public:
  id label, when, price, tags;
  std::int64_t count = 0;
  std::int32_t small = 0;
  bool open = false;
  double ratio = 0;
  std::shared_ptr<Sample> next;
  std::weak_ptr<Sample> parent;

  std::string className() const override { return "Sample"; }
  static bool supportsSecureCoding() { return true; }
  static const NSCodingClass& codingClass();
  const NSCodingClass& classForCoder() const override { return codingClass(); }
  void encodeWithCoder(NSCoder& coder) const override {
    coder.encodeObject(label, "label");
    coder.encodeObject(when, "when");
    coder.encodeObject(price, "price");
    coder.encodeObject(tags, "tags");
    coder.encodeInt64(count, "count");
    coder.encodeInt32(small, "small");
    coder.encodeBool(open, "open");
    coder.encodeDouble(ratio, "ratio");
    coder.encodeObject(next, "next");
    coder.encodeObject(parent.lock(), "parent");
  }
  static std::shared_ptr<Sample> initWithCoder(NSCoder& coder) {
    auto sample = std::make_shared<Sample>();
    coder.setObjectBeingDecoded(sample);
    sample->label = coder.decodeObjectOfClass<std::string>("label");
    sample->when = coder.decodeObjectOfClass<NSDate>("when");
    sample->price = coder.decodeObjectOfClass<NSDecimalNumber>("price");
    sample->tags = coder.decodeObjectOfClasses<NSArray, std::string, NSNumber, NSNull>("tags");
    sample->count = coder.decodeInt64("count");
    sample->small = coder.decodeInt32("small");
    sample->open = coder.decodeBool("open");
    sample->ratio = coder.decodeDouble("ratio");
    sample->next = coder.decodeObjectOfClass<Sample>("next");
    sample->parent = coder.decodeObjectOfClass<Sample>("parent");
    return sample;
  }
};

class SpecialSample final : public Sample {
 public:
  static const NSCodingClass& codingClass();
  const NSCodingClass& classForCoder() const override { return codingClass(); }
  static std::shared_ptr<SpecialSample> initWithCoder(NSCoder&) {
    return std::make_shared<SpecialSample>();
  }
};

inline const NSCodingClass& Sample::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<Sample>("Sample");
  return record;
}
inline const NSCodingClass& SpecialSample::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<SpecialSample>("SpecialSample", &Sample::codingClass());
  return record;
}

/// Does not announce itself, refuses to be read, or raises, as its mode says.
class Stubborn final : public NSObject, public NSSecureCoding {
 public:
  std::int64_t mode = 0;
  id member;

  static bool supportsSecureCoding() { return true; }
  static const NSCodingClass& codingClass() {
    static const NSCodingClass& record = NSCodingClass::define<Stubborn>("Stubborn");
    return record;
  }
  const NSCodingClass& classForCoder() const override { return codingClass(); }
  void encodeWithCoder(NSCoder& coder) const override {
    coder.encodeInt64(mode, "mode");
    coder.encodeObject(member, "member");
  }
  static std::shared_ptr<Stubborn> initWithCoder(NSCoder& coder) {
    const std::int64_t mode = coder.decodeInt64("mode");
    if (mode == 1) return nullptr;
    if (mode == 2) throw NSException(NSInvalidArgumentException, "raised while reading");
    auto stubborn = std::make_shared<Stubborn>();
    stubborn->member = coder.decodeObjectOfClass<Stubborn>("member");
    return stubborn;
  }
};

class Insecure final : public NSObject, public NSSecureCoding {
 public:
  static bool supportsSecureCoding() { return false; }
  static const NSCodingClass& codingClass() {
    static const NSCodingClass& record = NSCodingClass::define<Insecure>("Insecure");
    return record;
  }
  const NSCodingClass& classForCoder() const override { return codingClass(); }
  void encodeWithCoder(NSCoder&) const override {}
  static std::shared_ptr<Insecure> initWithCoder(NSCoder&) { return std::make_shared<Insecure>(); }
};

inline NSData archived(const id& root) {
  std::shared_ptr<const NSError> error;
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(root, true, &error);
  EXPECT_TRUE(data) << (error ? error->localizedDescription() : "no error");
  return data.value_or(NSData());
}

inline id unarchived(const NSData& data, NSErrorSlot error = nullptr) {
  return NSKeyedUnarchiver::unarchivedObjectOfClasses<NSArray, NSDictionary, NSSet, std::string,
                                                      NSNumber, NSDate, NSData, NSURL, NSUUID,
                                                      NSNull, Sample, Stubborn>(data, error);
}

/// nil, with an error; gives what it says.
inline std::string refusal(const NSData& data) {
  std::shared_ptr<const NSError> error;
  EXPECT_TRUE(unarchived(data, &error).isNil());
  if (!error) return "no error";
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), NSCoderReadCorruptError);
  return error->localizedDescription();
}

inline id uid(std::uint32_t value) { return std::make_shared<NSPropertyListUID>(value); }
inline id dictionary(const NSDictionary::Entries& entries) {
  return std::make_shared<NSDictionary>(entries);
}
inline id list(std::vector<id> members) { return std::make_shared<NSArray>(std::move(members)); }
inline id classNamed(std::string_view name) {
  return dictionary({{"$classname", name}, {"$classes", list({name, "NSObject"})}});
}

/// An archive put together by hand; the object 1 is the root.
inline NSData archiveOf(std::vector<id> objects,
                        NSPropertyListFormat format = NSPropertyListBinaryFormat_v1_0) {
  objects.insert(objects.begin(), "$null");
  const auto data = NSPropertyListSerialization::dataWithPropertyList(
      dictionary({{"$version", 100000},
                  {"$archiver", "NSKeyedArchiver"},
                  {"$top", dictionary({{"root", uid(1)}})},
                  {"$objects", list(std::move(objects))}}),
      format, 0);
  EXPECT_TRUE(data);
  return data.value_or(NSData());
}

}  // namespace orlftest
