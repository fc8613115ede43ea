/// The types that a property builder knows: for each of five families, operations under the names
/// of types as they stand in operations ("Integer"; elements may write "integer" too). A derived
/// builder widens what its base knows:
///
///     const ORLFXMLPropertyVocabulary& MoneyBuilder::vocabulary() const {
///       static const auto words = ORLFXMLParserPropertyBuilder::vocabulary().extendedBy({
///           .basicTypes = {{"Money", ORLFXMLCall<&MoneyBuilder::makeMoneyTypeWithValue>()}},
///           .objects = {{"Account", [](ORLFXMLParserPropertyBuilder&) { return newAccount(); }}},
///       });
///       return words;
///     }
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace ORLFoundation {

class ORLFXMLParserPropertyBuilder;

struct ORLFXMLPropertyVocabulary {
  using Builder = ORLFXMLParserPropertyBuilder;
  template <class Operation>
  using Family = std::map<std::string, std::function<Operation>, std::less<>>;

  /// `make%@TypeWithValue:`  From the text of an attribute, nil when there is none.
  Family<id(Builder& builder, const std::optional<std::string>& value)> basicTypes = {};
  /// `makeCollectionOfType%@`
  Family<id(Builder& builder)> collections = {};
  /// `makeTextOfType%@`
  Family<id(Builder& builder)> texts = {};
  /// `makeObjectOfType%@`
  Family<id(Builder& builder)> objects = {};
  /// `addElement:to%@:`  By the type of the collection.
  Family<void(Builder& builder, const id& element, const id& collection)> elementAdders = {};

  /// These with more; of two under one name, that of `more`.
  [[nodiscard]] ORLFXMLPropertyVocabulary extendedBy(ORLFXMLPropertyVocabulary more) const;
};

/// Calls an operation of a builder's own class; a class that derives from that one may override it.
template <auto Operation>
struct ORLFXMLCall {
  template <class... Arguments>
  auto operator()(ORLFXMLParserPropertyBuilder& builder, const Arguments&... arguments) const {
    return call(builder, Operation, arguments...);
  }

 private:
  template <class Class, class Result, class... Parameters, class... Arguments>
  static Result call(ORLFXMLParserPropertyBuilder& builder,
                     Result (Class::*operation)(Parameters...), const Arguments&... arguments) {
    return (static_cast<Class&>(builder).*operation)(arguments...);
  }
};

}  // namespace ORLFoundation
