#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>
#include <ORLFoundation/xmlparsing/builders/internal/BuilderSupport.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/RefusedElement.h>

#include <exception>

namespace ORLFoundation {

using namespace internal::builders;
using internal::fragments::refusedElement;

namespace {

constexpr std::string_view kKey = "key";
constexpr std::string_view kElement = "element";

enum Kind : std::int32_t { kNone = 0, kBasic = 1, kCollection = 2, kText = 3, kObject = 4 };

/// The attributes that name a type outright, in the order in which they count.
struct NamedKind {
  std::string_view attribute;
  Kind kind;
};
constexpr NamedKind kNamedKinds[] = {
    {"type", kBasic}, {"collection", kCollection}, {"text", kText}, {"object", kObject}};

template <class Family>
const typename Family::mapped_type* find(const Family& family, std::string_view name) {
  const auto found = family.find(name);
  return found == family.end() ? nullptr : &found->second;
}

void logRaised(const std::exception& raised) {
  NSLog(std::string("property tag exception:") + raised.what());
}

[[noreturn]] void raiseUnrecognized(const id& receiver, const char* operation) {
  throw NSException(NSInvalidArgumentException,
                    "-[" + receiver.className() + " " + operation + "]: unrecognized operation");
}

/// `addObject:` of whatever collection this is; nil takes it without a trace.
void addObject(const id& element, const id& collection) {
  if (const auto array = collection.as<NSMutableArray>()) return array->addObject(element);
  if (const auto set = collection.as<NSMutableSet>()) return set->addObject(element);
  if (collection) raiseUnrecognized(collection, "addObject:");
}

/// The one name beside "key", if there is exactly one.
std::optional<std::string> onlyOtherName(const NSDictionary& attributes) {
  std::optional<std::string> other;
  for (const auto& [name, value] : attributes.entries()) {
    if (name == id(kKey)) continue;
    if (other) return std::nullopt;
    other = name.as<std::string>();
  }
  return other;
}

}  // namespace

const ORLFXMLPropertyVocabulary& ORLFXMLParserPropertyBuilder::vocabulary() const {
  using Self = ORLFXMLParserPropertyBuilder;
  static const ORLFXMLPropertyVocabulary words{
      .basicTypes = {{"Integer", ORLFXMLCall<&Self::makeIntegerTypeWithValue>()},
                     {"Int", ORLFXMLCall<&Self::makeIntTypeWithValue>()},
                     {"String", ORLFXMLCall<&Self::makeStringTypeWithValue>()},
                     {"Bool", ORLFXMLCall<&Self::makeBoolTypeWithValue>()}},
      .collections = {{"Array", ORLFXMLCall<&Self::makeCollectionOfTypeArray>()},
                      {"Set", ORLFXMLCall<&Self::makeCollectionOfTypeSet>()},
                      {"Dictionary", ORLFXMLCall<&Self::makeCollectionOfTypeDictionary>()}},
      .texts = {},
      .objects = {},
      .elementAdders = {{"Array", ORLFXMLCall<&Self::addElementToArray>()},
                        {"Set", ORLFXMLCall<&Self::addElementToSet>()}}};
  return words;
}

std::string ORLFXMLParserPropertyBuilder::convertToCamelCase(std::string_view name) const {
  if (name.empty()) throw NSException(NSRangeException, "The name of a type is empty.");
  const auto first = internal::base::firstUTF8Character(name);
  // Characters are counted in UTF-16, where half of a pair has no capital form.
  if (internal::base::unitsInUTF16(first.codePoint) > 1) return std::string(name);
  return capitalizedString(name.substr(0, first.length)) + std::string(name.substr(first.length));
}

id ORLFXMLParserPropertyBuilder::makeBasicType(std::string_view type,
                                               const std::optional<std::string>& withValue) {
  if (const auto* make = find(vocabulary().basicTypes, convertToCamelCase(type)))
    return (*make)(*this, withValue);
  _ORLFDebugLog("Could not find a selector for basic type %@", type);
  return nullptr;
}

id ORLFXMLParserPropertyBuilder::makeCollectionOfType(std::string_view type) {
  if (const auto* make = find(vocabulary().collections, convertToCamelCase(type)))
    return (*make)(*this);
  _ORLFDebugLog("Could not find a selector for collection of type %@", type);
  return nullptr;
}

id ORLFXMLParserPropertyBuilder::makeTextOfType(std::string_view type) {
  if (const auto* make = find(vocabulary().texts, convertToCamelCase(type))) return (*make)(*this);
  _ORLFDebugLog("Could not find a selector for text of type %@", type);
  return nullptr;
}

id ORLFXMLParserPropertyBuilder::makeObjectOfType(std::string_view type) {
  if (const auto* make = find(vocabulary().objects, convertToCamelCase(type)))
    return (*make)(*this);
  _ORLFDebugLog("Could not find a selector for object of type %@", type);
  return nullptr;
}

void ORLFXMLParserPropertyBuilder::setElement(const id& element) {
  try {
    addToValue(element);
  } catch (const std::exception& raised) {
    logRaised(raised);
    if (const auto running = parser()) running->fragementErrorOccurred(refusedElement());
  }
}

void ORLFXMLParserPropertyBuilder::addToValue(const id& element) {
  if (kind_ == kCollection) {
    const std::string type = convertToCamelCase(type_.value_or(std::string()));
    if (const auto* add = find(vocabulary().elementAdders, type))
      return (*add)(*this, element, value_);
  }
  if (value_.isNil()) return;
  const auto object = value_.object();
  const NSKey* setter = object ? object->keyTable().find(kElement) : nullptr;
  if (setter == nullptr || setter->set == nullptr) raiseUnrecognized(value_, "setElement:");
  setter->set(*object, element);
}

id ORLFXMLParserPropertyBuilder::makeIntegerTypeWithValue(const std::optional<std::string>& value) {
  return parser() ? id(ORLFXMLParser::integerValueForString(value)) : id();
}
id ORLFXMLParserPropertyBuilder::makeIntTypeWithValue(const std::optional<std::string>& value) {
  return makeIntegerTypeWithValue(value);
}
id ORLFXMLParserPropertyBuilder::makeStringTypeWithValue(const std::optional<std::string>& value) {
  return value;
}
id ORLFXMLParserPropertyBuilder::makeBoolTypeWithValue(const std::optional<std::string>& value) {
  return parser() ? id(ORLFXMLParser::boolValueForString(value)) : id();
}
id ORLFXMLParserPropertyBuilder::makeCollectionOfTypeArray() {
  return std::make_shared<NSMutableArray>();
}
id ORLFXMLParserPropertyBuilder::makeCollectionOfTypeSet() {
  return std::make_shared<NSMutableSet>();
}
id ORLFXMLParserPropertyBuilder::makeCollectionOfTypeDictionary() {
  return std::make_shared<NSMutableDictionary>();
}
void ORLFXMLParserPropertyBuilder::addElementToArray(const id& element, const id& array) {
  addObject(element, array);
}
void ORLFXMLParserPropertyBuilder::addElementToSet(const id& element, const id& set) {
  addObject(element, set);
}

std::optional<ORLFXMLParserPropertyBuilder::Declared> ORLFXMLParserPropertyBuilder::declared(
    const std::shared_ptr<NSDictionary>& attributes) {
  const auto text = [&](std::string_view name) {
    return ORLFXMLParser::stringValueNamed(name, attributes);
  };
  for (const NamedKind& named : kNamedKinds) {
    const auto type = text(named.attribute);
    if (!type) continue;
    switch (named.kind) {
      case kCollection:
        return Declared{kCollection, *type, makeCollectionOfType(*type)};
      case kText:
        return Declared{kText, *type, makeTextOfType(*type)};
      case kObject:
        return Declared{kObject, *type, makeObjectOfType(*type)};
      default:
        return Declared{kBasic, *type, makeBasicType(*type, text("value"))};
    }
  }
  const auto other = onlyOtherName(*attributes);
  if (!other) return std::nullopt;
  return Declared{kBasic, *other, makeBasicType(*other, text(*other))};
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserPropertyBuilder::startElement(
    std::string_view name, const std::shared_ptr<NSDictionary>& attributes) {
  if (auto error = ORLFXMLParserContentHandler::startElement(name, attributes)) return error;
  if (const auto key = ORLFXMLParser::stringValueNamed(kKey, attributes)) {
    const auto made = declared(attributes);
    if (made && made->value) {
      setKind(made->kind);
      setType(made->type);
      setKey(key);
      if (!made->value.isNull()) setValue(made->value);
      return nullptr;
    }
  }
  return refusesUnclaimed(parser()) ? refusedElement() : nullptr;
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserPropertyBuilder::endElement(
    std::string_view name) {
  auto error = ORLFXMLParserContentHandler::endElement(name);
  if (!key_) return error;
  try {
    if (const auto target = parent()) target->setValueForKey(value_, *key_);
  } catch (const std::exception& raised) {
    logRaised(raised);
    return refusedElement();
  }
  return error;
}

void ORLFXMLParserPropertyBuilder::setValueForUndefinedKey(const id& value, std::string_view key) {
  if (const auto object = value_.object()) return object->setValueForKey(value, key);
  ORLFXMLParserContentHandler::setValueForUndefinedKey(value, key);
}

id ORLFXMLParserPropertyBuilder::valueForUndefinedKey(std::string_view key) const {
  if (value_) return value_.valueForKey(key);
  return ORLFXMLParserContentHandler::valueForUndefinedKey(key);
}

const NSKeyTable& ORLFXMLParserPropertyBuilder::keyTable() const {
  using Self = ORLFXMLParserPropertyBuilder;
  static const NSKeyTable table(
      ORLFXMLParserContentHandler::keyTable(),
      {NSKey::readWrite<&Self::kind, &Self::setKind>("kind"),
       NSKey::readWrite<&Self::value, &Self::setValue>("value"),
       NSKey::readWrite<&Self::key, &Self::setKey>("key"),
       NSKey::readWrite<&Self::type, &Self::setType>("type"),
       // It can be set alone; to read it asks the value.
       {kElement,
        [](const NSObject& builder) { return builder.valueForUndefinedKey(kElement); },
        [](NSObject& builder, const id& element) {
          static_cast<Self&>(builder).setElement(element);
        },
        {}}});
  return table;
}

}  // namespace ORLFoundation
