/// Makes one object from an element. Property builders beneath give it its values, by key.
///
///     class AccountBuilder : public ORLFXMLParserObjectBuilder {
///       id makeBuiltObjectForElement(std::string_view, const std::shared_ptr<NSDictionary>&)
///           override {
///         return std::make_shared<NSMutableDictionary>();
///       }
///     };
#pragma once

#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class ORLFXMLParserObjectBuilder : public ORLFXMLParserContentHandler {
 public:
  /// The object under construction; nil before the element's start, and kept after its end.
  [[nodiscard]] const id& builtObject() const noexcept { return builtObject_; }
  void setBuiltObject(id object) { builtObject_ = std::move(object); }

  /// `makeBuiltObjectForElement:attributes:`  For derived classes. nil, as here, is an error of
  /// code 86 when the parser refuses unclaimed elements; else nothing is built.
  [[nodiscard]] virtual id makeBuiltObjectForElement(
      std::string_view element, const std::shared_ptr<NSDictionary>& attributes);
  /// `finalizeBuiltObject:forElement:`  Called at the element's end with an object that is not nil.
  /// false refuses it with code 86; true here.
  [[nodiscard]] virtual bool finalizeBuiltObject(const id& object, std::string_view forElement);

  [[nodiscard]] Error startElement(std::string_view name,
                                   const std::shared_ptr<NSDictionary>& attributes) override;
  [[nodiscard]] Error endElement(std::string_view name) override;
  /// Keys that the builder itself does not have are those of the built object; without one they
  /// raise.
  void setValueForUndefinedKey(const id& value, std::string_view key) override;
  [[nodiscard]] id valueForUndefinedKey(std::string_view key) const override;

  [[nodiscard]] std::string className() const override { return "ORLFXMLParserObjectBuilder"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::optional<id> objectForHandlersBeneath() const override { return builtObject_; }

 private:
  id builtObject_;
};

}  // namespace ORLFoundation
