/// The decoded reply of a web service as an object of its own class, which names what the reply
/// must have.
///
///     class Balance : public ORLFServiceResponseObject {
///      public:
///       using ORLFServiceResponseObject::ORLFServiceResponseObject;
///       std::shared_ptr<NSSet> requiredDataKeyPaths() const override {
///         return NSSet::setWithObjects({"account.id", "amount"});
///       }
///       std::string className() const override { return "Balance"; }
///
///      protected:
///       std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
///         return std::make_shared<Balance>();
///       }
///     };
///
///     std::shared_ptr<const NSError> error;
///     const auto balance = ORLFServiceResponseObject::initWithData<Balance>(reply, &error);
///
/// Key paths are keys with points between them, each looked up in the dictionary that was reached.
/// Objects never change and serve any thread.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSSet.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFServiceResponseObject : public NSObject {
 public:
  /// `init`  With an empty dictionary.
  ORLFServiceResponseObject();
  /// `initWithRawData:`  Keeps a copy and asks for nothing. nil stays nil.
  explicit ORLFServiceResponseObject(const std::shared_ptr<NSDictionary>& rawData);
  /// `initWithData:error:`  An object of the class with a copy of the dictionary. null, with the
  /// error of ORLFServiceResponseError.h, where a key path of the class leads to nothing; the
  /// marker for null is something.
  template <class Response = ORLFServiceResponseObject>
  [[nodiscard]] static std::shared_ptr<Response> initWithData(
      const std::shared_ptr<NSDictionary>& data, NSErrorSlot error = nullptr) {
    auto response = std::make_shared<Response>(data);
    return response->hasRequiredData(error) ? response : nullptr;
  }

  /// `requiredDataKeyPaths`  Of the class: the key paths without which a reply is of no use. None
  /// here, for subclasses to name theirs.
  [[nodiscard]] virtual std::shared_ptr<NSSet> requiredDataKeyPaths() const;
  /// `data`  nil only where nil was given.
  [[nodiscard]] const std::shared_ptr<NSDictionary>& data() const noexcept { return data_; }
  /// `serviceValueForKeyPath:`  nil where the path leads to nothing, or through a value that has no
  /// keys.
  [[nodiscard]] id serviceValueForKeyPath(std::string_view keyPath) const;
  /// `rawData`  A copy of the data.
  [[nodiscard]] std::shared_ptr<NSDictionary> rawData() const;

  [[nodiscard]] std::string className() const override { return "ORLFServiceResponseObject"; }
  /// "<Balance 0x55d0c8>" and the description of the data.
  [[nodiscard]] std::string description() const override;
  /// The same class, exactly, and equal data.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `copy`  A new object of the same class, which is asked for nothing.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  [[nodiscard]] bool hasRequiredData(NSErrorSlot error) const;

  std::shared_ptr<NSDictionary> data_;
};

}  // namespace ORLFoundation
