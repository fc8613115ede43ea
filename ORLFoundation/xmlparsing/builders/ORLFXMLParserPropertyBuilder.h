/// Makes one value from an element and gives it to the handler around it, under the key that the
/// attribute "key" names. `<p key="limit" type="integer" value="3"/>` and its short form
/// `<p key="limit" integer="3"/>` make a basic value; `collection="array"`, `text="..."` and
/// `object="..."` in the place of the type make values of the other kinds.
///
/// Which types there are says the builder's vocabulary. A collection is filled by property elements
/// inside of it with the key "element", a dictionary by those with any other key.
///
/// At the element's end the value goes to the parent by `setValueForKey`: a key that the parent
/// itself has is the parent's, every other one that of the value, or the object, under construction
/// there. What raises on the way ends the parse with code 86.
#pragma once

#include <ORLFoundation/xmlparsing/builders/ORLFXMLPropertyVocabulary.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class ORLFXMLParserPropertyBuilder : public ORLFXMLParserContentHandler {
 public:
  /// What the element declared: 0 nothing, 1 a basic value, 2 a collection, 3 a text, 4 an object.
  [[nodiscard]] std::int32_t kind() const noexcept { return kind_; }
  void setKind(std::int32_t kind) noexcept { kind_ = kind; }
  /// The value under construction; nil when there is none, and where an operation made `NSNull`.
  [[nodiscard]] const id& value() const noexcept { return value_; }
  void setValue(id value) { value_ = std::move(value); }
  /// The target's key; nil for an element of which nothing could be made.
  [[nodiscard]] const std::optional<std::string>& key() const noexcept { return key_; }
  void setKey(std::optional<std::string> key) { key_ = std::move(key); }
  /// The type's name as written.
  [[nodiscard]] const std::optional<std::string>& type() const noexcept { return type_; }
  void setType(std::optional<std::string> type) { type_ = std::move(type); }

  /// The types of this class: basic integer, int, string and bool; the collections array, set and
  /// dictionary, the first two with adders. Derived classes extend it.
  [[nodiscard]] virtual const ORLFXMLPropertyVocabulary& vocabulary() const;

  /// `convertToCamelCase:`  "integer" is "Integer"; all but the first character stays. A first
  /// character beyond the basic plane stays too. Raises `NSRangeException` for an empty name.
  [[nodiscard]] std::string convertToCamelCase(std::string_view name) const;
  /// `makeBasicType:withValue:`  and the like: by the vocabulary; nil for a type that it lacks.
  [[nodiscard]] virtual id makeBasicType(std::string_view type,
                                         const std::optional<std::string>& withValue);
  /// `makeCollectionOfType:`
  [[nodiscard]] virtual id makeCollectionOfType(std::string_view type);
  /// `makeTextOfType:`
  [[nodiscard]] virtual id makeTextOfType(std::string_view type);
  /// `makeObjectOfType:`
  [[nodiscard]] virtual id makeObjectOfType(std::string_view type);
  /// `setElement:`  Adds to the collection under construction, or hands on to the key "element" of
  /// a value that has one. What raises, and a value that takes no elements, is told to the parser
  /// as an error of code 86.
  virtual void setElement(const id& element);

  /// `makeIntegerTypeWithValue:`  As `integerValueForString` of the parser; nil without a parser.
  [[nodiscard]] virtual id makeIntegerTypeWithValue(const std::optional<std::string>& value);
  /// `makeIntTypeWithValue:`  The same.
  [[nodiscard]] virtual id makeIntTypeWithValue(const std::optional<std::string>& value);
  /// `makeStringTypeWithValue:`  The text itself.
  [[nodiscard]] virtual id makeStringTypeWithValue(const std::optional<std::string>& value);
  /// `makeBoolTypeWithValue:`  As `boolValueForString` of the parser; nil without a parser.
  [[nodiscard]] virtual id makeBoolTypeWithValue(const std::optional<std::string>& value);
  /// `makeCollectionOfTypeArray`, `makeCollectionOfTypeSet`, `makeCollectionOfTypeDictionary`
  [[nodiscard]] virtual id makeCollectionOfTypeArray();
  [[nodiscard]] virtual id makeCollectionOfTypeSet();
  [[nodiscard]] virtual id makeCollectionOfTypeDictionary();
  /// `addElement:toArray:`, `addElement:toSet:`
  /// What takes no objects raises, as nil does for an element; a collection that is nil takes them
  /// without a trace.
  virtual void addElementToArray(const id& element, const id& array);
  virtual void addElementToSet(const id& element, const id& set);

  [[nodiscard]] Error startElement(std::string_view name,
                                   const std::shared_ptr<NSDictionary>& attributes) override;
  [[nodiscard]] Error endElement(std::string_view name) override;
  /// Keys that the builder itself does not have are those of the value; without one they raise.
  void setValueForUndefinedKey(const id& value, std::string_view key) override;
  [[nodiscard]] id valueForUndefinedKey(std::string_view key) const override;

  [[nodiscard]] std::string className() const override { return "ORLFXMLParserPropertyBuilder"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  struct Declared {
    std::int32_t kind = 0;
    std::string type;
    id value;
  };
  [[nodiscard]] std::optional<Declared> declared(const std::shared_ptr<NSDictionary>& attributes);
  void addToValue(const id& element);

  std::int32_t kind_ = 0;
  id value_;
  std::optional<std::string> key_;
  std::optional<std::string> type_;
};

}  // namespace ORLFoundation
