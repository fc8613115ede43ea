/// What the tests of archives share: the classes by name, the samples, and objects as JSON.
#pragma once

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <string>
#include <vector>

namespace orlftest {

/// An object around any value that a property of an application may hold; archives name it
/// "ORLFSerializableObject".
class SerializableObject final : public ORLFoundation::NSObject,
                                 public ORLFoundation::NSSecureCoding {
 public:
  explicit SerializableObject(ORLFoundation::id data) : data_(std::move(data)) {}
  [[nodiscard]] const ORLFoundation::id& data() const { return data_; }

  [[nodiscard]] std::string className() const override { return "ORLFSerializableObject"; }
  static bool supportsSecureCoding() { return true; }
  static const ORLFoundation::NSCodingClass& codingClass();
  static std::shared_ptr<SerializableObject> initWithCoder(ORLFoundation::NSCoder& coder);
  void encodeWithCoder(ORLFoundation::NSCoder& coder) const override;
  [[nodiscard]] const ORLFoundation::NSCodingClass& classForCoder() const override {
    return codingClass();
  }

 private:
  ORLFoundation::id data_;
};

/// The classes to allow when a class of that name is asked for: the collections with what the
/// samples hold in them. Throws for an unknown name.
[[nodiscard]] ORLFoundation::NSCodingClasses classesToRead(const std::string& name);
/// All classes that a sample can hold.
[[nodiscard]] ORLFoundation::NSCodingClasses allClasses();

[[nodiscard]] ORLFoundation::NSData sampleNamed(const std::string& file);
/// The names of all samples in order: those of the folder that ORLF_VECTORS names, and the
/// repository's.
[[nodiscard]] std::vector<std::string> sampleNames();

/// An archive of an object of any class.
[[nodiscard]] ORLFoundation::NSData archived(
    const ORLFoundation::id& object,
    ORLFoundation::NSPropertyListFormat format = ORLFoundation::NSPropertyListBinaryFormat_v1_0);

/// An object in the form that the table of samples writes.
[[nodiscard]] Json jsonFromObject(const ORLFoundation::id& object);

}  // namespace orlftest
