
#include <ORLFoundation/platform/plist/internal/XMLPropertyListReader.h>

#include <ORLFoundation/platform/plist/internal/XMLPropertyListScalars.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::plist {
namespace {

using Index = PropertyListTable::Index;

constexpr std::string_view kUIDKey = "CF$UID";
constexpr std::string_view kUTF8Line = R"(<?xml version="1.0" encoding="UTF-8"?>)";

enum class Element : std::uint8_t {
  Plist,
  Array,
  Dictionary,
  Key,
  String,
  Integer,
  Real,
  Date,
  Data,
  True,
  False,
};
struct ElementName {
  std::string_view name;
  Element element;
};
constexpr std::array kElementNames = {
    ElementName{"plist", Element::Plist},     ElementName{"array", Element::Array},
    ElementName{"dict", Element::Dictionary}, ElementName{"key", Element::Key},
    ElementName{"string", Element::String},   ElementName{"integer", Element::Integer},
    ElementName{"real", Element::Real},       ElementName{"date", Element::Date},
    ElementName{"data", Element::Data},       ElementName{"true", Element::True},
    ElementName{"false", Element::False},
};

Element elementNamed(std::string_view name) {
  for (const ElementName& known : kElementNames)
    if (known.name == name) return known.element;
  throw PropertyListFault("An element is unknown.");
}

bool holdsText(Element element) noexcept {
  return element >= Element::Key && element <= Element::Data;
}

// Takes the parser's events and fills a table. Values of the open containers wait in one stack
// until their container ends.
class Builder {
 public:
  void start(std::string_view name) {
    const Element element = elementNamed(name);
    if (!open_.empty() && !isStructure(open_.back().element))
      throw PropertyListFault("A value stands inside another.");
    if (element == Element::Plist && !open_.empty())
      throw PropertyListFault("A list stands inside another.");
    if (element == Element::Array || element == Element::Dictionary) {
      if (++depth_ > PropertyListTable::kDeepestNesting)
        throw PropertyListFault("The list is nested too deep.");
    }
    checkPlace(element);
    open_.push_back({element, waiting_.size()});
    text_.clear();
  }

  void characters(std::string_view text) {
    if (!open_.empty() && holdsText(open_.back().element)) {
      text_ += text;
    } else if (text.find_first_not_of(" \t\r\n") != std::string_view::npos) {
      throw PropertyListFault("Text stands between the values.");
    }
  }

  void end() {
    const Open closed = open_.back();
    open_.pop_back();
    if (closed.element == Element::Plist) return;
    const Index node = finish(closed);
    waiting_.push_back(node);
  }

  PropertyListTable finish() {
    if (waiting_.size() != 1 || !open_.empty())
      throw PropertyListFault("The document does not hold one value.");
    table_.setTop(waiting_.front());
    return std::move(table_);
  }

 private:
  struct Open {
    Element element;
    std::size_t first;  // of its values in `waiting_`
  };

  static bool isStructure(Element element) noexcept {
    return element == Element::Plist || element == Element::Array || element == Element::Dictionary;
  }

  // In a dictionary keys and values take turns; at the outermost there is one value.
  void checkPlace(Element element) const {
    const bool inDictionary = !open_.empty() && open_.back().element == Element::Dictionary;
    const bool keyIsDue = inDictionary && (waiting_.size() - open_.back().first) % 2 == 0;
    if (keyIsDue != (element == Element::Key))
      throw PropertyListFault(keyIsDue ? "A key is missing." : "A key stands in a wrong place.");
    const bool outermost = open_.empty() || open_.back().element == Element::Plist;
    if (outermost && !waiting_.empty())
      throw PropertyListFault("The document holds more than one value.");
  }

  Index finish(const Open& closed) {
    switch (closed.element) {
      case Element::Array:
        return finishArray(closed.first);
      case Element::Dictionary:
        return finishDictionary(closed.first);
      case Element::Integer:
        return finishInteger();
      case Element::Real:
        return table_.addReal(PropertyListKind::Real, realFromXML(text_));
      case Element::Date:
        return table_.addReal(PropertyListKind::Date, dateFromXML(text_));
      case Element::Data:
        return table_.addText(PropertyListKind::Data, dataFromXML(text_));
      case Element::True:
      case Element::False:
        return table_.addScalar(PropertyListKind::Boolean, closed.element == Element::True);
      default:
        return table_.addText(PropertyListKind::String, text_);
    }
  }

  Index finishArray(std::size_t first) {
    --depth_;
    const Index node = table_.addArray(PropertyListTable::Indexes(waiting_).subspan(first));
    waiting_.resize(first);
    return node;
  }

  Index finishDictionary(std::size_t first) {
    --depth_;
    keys_.clear();
    values_.clear();
    if ((waiting_.size() - first) % 2 != 0) throw PropertyListFault("A value is missing.");
    for (std::size_t entry = first; entry < waiting_.size(); entry += 2) {
      keys_.push_back(waiting_[entry]);
      values_.push_back(waiting_[entry + 1]);
    }
    waiting_.resize(first);
    if (const auto uid = uidOfEntries()) return table_.addScalar(PropertyListKind::UID, *uid);
    return table_.addDictionary(keys_, values_);
  }

  [[nodiscard]] std::optional<std::uint64_t> uidOfEntries() const {
    if (keys_.size() != 1 || table_.text(keys_[0]) != kUIDKey ||
        table_.kind(values_[0]) != PropertyListKind::Integer)
      return std::nullopt;
    const std::int64_t value = table_.integer(values_[0]);
    if (value < 0 || value > UINT32_MAX) return std::nullopt;
    return static_cast<std::uint64_t>(value);
  }

  Index finishInteger() {
    const auto [bits, isNegative] = integerFromXML(text_);
    return isNegative ? table_.addScalar(PropertyListKind::Integer, bits)
                      : table_.addUnsigned(bits);
  }

  PropertyListTable table_;
  std::vector<Open> open_;
  std::vector<Index> waiting_;
  std::vector<Index> keys_;
  std::vector<Index> values_;
  base::WipedText text_;
  std::size_t depth_ = 0;
};

// What the parser's callbacks see. No exception may pass through the parser, so the first fault is
// kept here and stops it.
struct Session {
  Builder builder;
  std::optional<std::string> fault;
  xmlParserCtxtPtr parser = nullptr;

  void stop(const char* what) {
    if (!fault) fault = what;
    xmlStopParser(parser);
  }

  template <class Step>
  static void run(void* context, Step&& step) {
    auto& session = *static_cast<Session*>(context);
    if (session.fault) return;
    try {
      step(session.builder);
    } catch (const std::exception& problem) {
      session.stop(problem.what());
    }
  }
};

std::string_view viewOf(const xmlChar* text, std::size_t length) noexcept {
  return {reinterpret_cast<const char*>(text), length};
}

void startElement(void* context, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                  const xmlChar**, int, int, const xmlChar**) {
  Session::run(context, [&](Builder& builder) {
    builder.start(viewOf(name, static_cast<std::size_t>(xmlStrlen(name))));
  });
}
void endElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  Session::run(context, [](Builder& builder) { builder.end(); });
}
void characters(void* context, const xmlChar* text, int length) {
  Session::run(context, [&](Builder& builder) {
    builder.characters(viewOf(text, static_cast<std::size_t>(length)));
  });
}
void reference(void* context, const xmlChar*) {
  static_cast<Session*>(context)->stop("An entity is unknown.");
}
xmlEntityPtr predefinedEntity(void*, const xmlChar* name) { return xmlGetPredefinedEntity(name); }

xmlSAXHandler handlers() {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = startElement;
  handler.endElementNs = endElement;
  handler.characters = characters;
  handler.cdataBlock = characters;
  handler.reference = reference;
  handler.getEntity = predefinedEntity;
  handler.serror = [](void*, auto) {};  // well-formedness tells enough
  return handler;
}

struct FreeParser {
  void operator()(xmlParserCtxt* parser) const noexcept {
    // Declarations in the document make the parser keep one, callbacks or not.
    xmlFreeDoc(parser->myDoc);
    parser->myDoc = nullptr;
    xmlFreeParserCtxt(parser);
  }
};

using Parser = std::unique_ptr<xmlParserCtxt, FreeParser>;

// The parser copies a document into memory of its own, which it does not wipe. What this system
// writes it can read where it stands, as a text that ends with a zero: it is UTF-8 by its first
// line.
Parser parserInPlace(const base::WipedText& text) {
  Parser parser(xmlNewParserCtxt());
  if (!parser) return parser;
  xmlParserInput* const input =
      xmlNewStringInputStream(parser.get(), reinterpret_cast<const xmlChar*>(text.c_str()));
  if (input == nullptr || inputPush(parser.get(), input) < 0) return nullptr;
  return parser;
}

Parser parserOf(const base::WipedText& text) {
  const bool isOwnForm = text.starts_with(kUTF8Line) && text.find('\0') == text.npos;
  if (isOwnForm) return parserInPlace(text);
  return Parser(xmlCreateMemoryParserCtxt(text.data(), static_cast<int>(text.size())));
}

// Runs the parser over the document; false for one that is not well-formed.
bool parse(std::span<const std::uint8_t> bytes, Session& session) {
  const base::WipedText text(bytes.begin(), bytes.end());
  const Parser parser = parserOf(text);
  if (!parser) throw PropertyListFault("The document cannot be read.");
  session.parser = parser.get();
  xmlSAXHandler handler = handlers();
  xmlSAXHandler* const ownHandler = std::exchange(parser->sax, &handler);
  void* const ownData = std::exchange(parser->userData, &session);
  xmlCtxtUseOptions(parser.get(), XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOWARNING);
  xmlParseDocument(parser.get());
  parser->sax = ownHandler;
  parser->userData = ownData;
  return parser->wellFormed != 0;
}

// The parser takes white space before an element, but not before the XML declaration.
std::span<const std::uint8_t> withoutLeadingBlanks(std::span<const std::uint8_t> bytes) noexcept {
  std::size_t first = 0;
  while (first < bytes.size() && (bytes[first] == ' ' || (bytes[first] >= 9 && bytes[first] <= 13)))
    ++first;
  return bytes.subspan(first);
}

}  // namespace

PropertyListTable readXMLPropertyList(std::span<const std::uint8_t> bytes) {
  bytes = withoutLeadingBlanks(bytes);
  if (bytes.empty() || bytes.size() > std::numeric_limits<int>::max())
    throw PropertyListFault("The document is empty or too large.");
  static std::once_flag initialized;
  std::call_once(initialized, xmlInitParser);

  Session session;
  const bool wellFormed = parse(bytes, session);
  if (session.fault) throw PropertyListFault(*session.fault);
  if (!wellFormed) throw PropertyListFault("The document is no well-formed XML.");
  return session.builder.finish();
}

}  // namespace ORLFoundation::internal::plist
