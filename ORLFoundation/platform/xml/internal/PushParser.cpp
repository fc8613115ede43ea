#include <ORLFoundation/platform/xml/internal/PushParser.h>

#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/internal/AttributeCounter.h>
#include <ORLFoundation/platform/xml/internal/ElementDeclarations.h>
#include <ORLFoundation/platform/xml/internal/ExpansionBudget.h>
#include <ORLFoundation/platform/xml/internal/OpenElements.h>
#include <ORLFoundation/platform/xml/internal/PieceKeeper.h>
#include <ORLFoundation/platform/xml/internal/PushContext.h>
#include <ORLFoundation/platform/xml/internal/QuietThread.h>
#include <ORLFoundation/platform/xml/internal/QuotedLineEnds.h>
#include <ORLFoundation/platform/xml/internal/TagAttributes.h>
#include <ORLFoundation/platform/xml/internal/UnfinishedTag.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>

namespace ORLFoundation::internal::xml {
namespace {

constexpr std::string_view kStartOfDeclarations = "<!DOCTYPE";
constexpr std::string_view kBlanks = " \t\r\n";
/// What libxml2 is given at a time.
constexpr std::size_t kPiece = 32'768;
/// With each piece libxml2 looks through all of a tag or a declaration that has not come to its
/// end. The next piece of such a one is at least this part of it, so that few are needed.
constexpr std::size_t kLeastPartOfUnfinished = 8;

std::string_view viewOf(const xmlChar* begin, const xmlChar* end) noexcept {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

}  // namespace

/// What the callbacks see. Entities' texts are read by parsers that libxml2 makes for them, with
/// the same callbacks and this same session.
class PushParser::Session {
 public:
  Session(EventSink& sink, const NSXMLParserLimits& limits)
      : sink_(sink),
        limits_(limits),
        expansion_(limits.entityExpansion),
        context_(makePushContext(handlers(), this, limits)) {}

  bool push(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty() && !isOver_) {
      const auto piece = bytes.first(std::min(bytes.size(), kPiece));
      feed(pieces_.completed(piece, unfinished().size() / kLeastPartOfUnfinished), false);
      bytes = bytes.subspan(piece.size());
      if (!isOver_) boundUnfinishedMarkup();
    }
    if (isBehindDocument_ && !areZeros(bytes)) stopBehindDocument();
    return isBehindDocument_ ? !fault_ : !isOver_;
  }

  bool finish() {
    if (isBehindDocument_ && !areZeros(pieces_.kept())) stopBehindDocument();
    if (!isOver_) feed(pieces_.kept(), false);
    if (!isOver_) feed({}, true);
    return !fault_;
  }

  void stop(NSInteger code, std::string_view message) {
    if (fault_ || (isOver_ && !isBehindDocument_)) return;
    end();
    fault_ = Fault{code, line_, column_, std::string(message)};
  }

  [[nodiscard]] const std::optional<Fault>& fault() const noexcept { return fault_; }
  [[nodiscard]] NSInteger line() const noexcept { return isOver_ ? line_ : documentInput().line; }
  [[nodiscard]] NSInteger column() const noexcept {
    return isOver_ ? column_ : documentInput().col;
  }
  [[nodiscard]] TagPlace startTag() const noexcept {
    if (isOver_) return {line_, column_};
    const xmlParserInput& input = documentInput();
    return beginningOfTag(viewOf(input.base, input.cur), input.consumed == 0,
                          {input.line, input.col});
  }

 private:
  static xmlSAXHandler handlers();
  static bool areZeros(std::span<const std::uint8_t> bytes) noexcept {
    return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
  }
  static Session& of(void* data) noexcept { return *static_cast<Session*>(data); }

  /// The document's own, though a parameter entity is being read.
  [[nodiscard]] const xmlParserInput& documentInput() const noexcept {
    return *(context_->inputNr > 0 ? context_->inputTab[0] : context_->input);
  }

  /// The place must be read before: libxml2 may go on for a while.
  void end() noexcept {
    line_ = line();
    column_ = column();
    isOver_ = true;
    context_->disableSAX = 1;
    if (context_->errNo == XML_ERR_OK) context_->errNo = XML_ERR_USER_STOP;  // else it goes on
  }

  /// Runs a step inside of libxml2's frames; null where nothing more is wanted.
  template <class Step>
  static void run(void* data, Step&& step) noexcept {
    Session& session = of(data);
    if (session.isOver_) return;
    try {
      step(session);
    } catch (...) {
      session.thrown_ = std::current_exception();
      session.end();
    }
  }

  void feed(std::span<const std::uint8_t> bytes, bool isLast) {
    if (bytes.empty() && !isLast) return;
    {
      const QuietThread quiet;
      xmlParseChunk(context_.get(), reinterpret_cast<const char*>(bytes.data()),
                    static_cast<int>(bytes.size()), isLast ? 1 : 0);
    }
    if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
    if (!isOver_ && isLast && context_->wellFormed == 0)
      stop(context_->errNo, "The document is not well-formed.");
    // Bytes that cannot be converted halt the parser, or stay behind, without a fault.
    if (!isOver_ && (context_->disableSAX != 0 || (isLast && !areZeros(unconverted()))))
      stop(NSXMLParserInvalidEncodingError, "The bytes do not fit the document's encoding.");
  }

  /// What libxml2 has taken of the document and not made characters of.
  [[nodiscard]] std::span<const std::uint8_t> unconverted() const noexcept {
    const xmlParserInputBuffer* const buffer = documentInput().buf;
    if (buffer == nullptr || buffer->raw == nullptr) return {};
    return {xmlBufContent(buffer->raw), xmlBufUse(buffer->raw)};
  }

  /// What has come of a tag, a text or a declaration that goes on in the next piece.
  void boundUnfinishedMarkup() {
    const std::string_view markup = unfinished();
    const bool isTag = context_->instate == XML_PARSER_START_TAG;
    const bool isDTD =
        context_->instate == XML_PARSER_DTD || markup.starts_with(kStartOfDeclarations);
    if (markup.size() > (isDTD ? limits_.declarationsLength : limits_.textLength))
      stop(NSXMLParserInternalError, "A piece of markup or text is too long.");
    else if (isTag && unfinishedTag_.attributes(markup, place()) > limits_.attributeCount)
      stopForAttributes();
  }
  [[nodiscard]] std::string_view unfinished() const noexcept {
    return viewOf(context_->input->cur, context_->input->end);
  }
  [[nodiscard]] NSUInteger place() const noexcept {
    const xmlParserInput& input = *context_->input;
    return input.consumed + static_cast<NSUInteger>(input.cur - input.base);
  }

  // Declarations.
  void declareElement(const xmlChar* name, int type) {
    if (type == XML_ELEMENT_TYPE_ELEMENT) declarations_.addThatHoldsElementsAlone(viewOf(name));
  }
  void declareAttribute(const xmlChar* element, const xmlChar* defaultValue) {
    if (defaultValue == nullptr) return;
    const auto& defaults =
        declarations_.addDefaultAttribute(viewOf(element), viewOf(defaultValue).size());
    if (defaults.count > limits_.attributeCount) stopForAttributes();
  }
  void declareEntity(const xmlChar* name, int type, const xmlChar* publicId,
                     const xmlChar* systemId, xmlChar* content) {
    // An external one is declared as one that holds nothing: it is never opened.
    xmlChar nothing = 0;
    if (type == XML_EXTERNAL_PARAMETER_ENTITY)
      xmlSAX2EntityDecl(context_.get(), name, XML_INTERNAL_PARAMETER_ENTITY, nullptr, nullptr,
                        &nothing);
    else
      xmlSAX2EntityDecl(context_.get(), name, type, publicId, systemId, content);
  }

  // References.
  xmlEntityPtr entity(const xmlChar* name) {
    if (xmlEntityPtr known = xmlGetPredefinedEntity(name)) return known;
    xmlEntityPtr found = xmlGetDocEntity(context_->myDoc, name);
    if (context_->inSubset == 0) {
      if (found == nullptr) {
        stop(NSXMLParserUndeclaredEntityError,
             "The entity \"" + std::string(viewOf(name)) + "\" is not declared.");
      } else if (found->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY) {
        stop(NSXMLParserEntityIsExternalError,
             "The entity \"" + std::string(viewOf(name)) + "\" lies outside of the document.");
        return nullptr;
      }
    }
    return charged(found);
  }
  xmlEntityPtr charged(xmlEntityPtr found) {
    if (found == nullptr) return nullptr;
    const std::string_view text = viewOf(found->content);
    AttributeCounter counter;
    counter.read(text);
    if (counter.most() > limits_.attributeCount)
      stopForAttributes();
    else if (!expansion_.takeEntity(text, declarations_.mostDefaults()))
      stopForExpansion();
    return isOver_ ? nullptr : found;
  }
  xmlEntityPtr parameterEntity(const xmlChar* name) {
    xmlEntity* const found = xmlGetParameterEntity(context_->myDoc, name);
    if (found != nullptr && !expansion_.takeDeclarations(viewOf(found->content)))
      stopForExpansion();
    return isOver_ ? nullptr : found;
  }
  void stopForExpansion() {
    stop(NSXMLParserEntityRefLoopError, "The document's entities expand too far.");
  }

  // Content.
  struct Tag {
    std::string_view name;
    TagAttributes::Texts namespaces;
    TagAttributes::Texts attributes;
    std::size_t defaultCount;  // of the attributes, the last ones
  };
  void startElement(const Tag& tag) {
    if (open_.count() >= limits_.elementDepth)
      return stop(NSXMLParserInternalError, "The elements are nested too deep.");
    if (!isWithinLimits(tag)) return;
    open_.open(tag.namespaces.size() / TagAttributes::kTextsOfANamespace,
               declarations_.holdsElementsAlone(tag.name));
    beginText();
    const auto& attributes = attributes_.dictionary(tag.namespaces, tag.attributes);
    if (attributes == nullptr)
      return stop(XML_ERR_ATTRIBUTE_REDEFINED, "A prefix is declared twice in one tag.");
    sink_.startElement(tag.name, attributes);
  }
  bool isWithinLimits(const Tag& tag) {
    const std::size_t namespaces = tag.namespaces.size() / TagAttributes::kTextsOfANamespace;
    const std::size_t attributes = tag.attributes.size() / TagAttributes::kTextsOfAnAttribute;
    if (attributes + attributes_.emptyPrefixCount() + namespaces + open_.namespaces() >
        limits_.attributeCount) {
      stopForAttributes();
      return false;
    }
    if (TagAttributes::longestValue(tag.attributes) > limits_.textLength)
      stop(NSXMLParserInternalError, "The value of an attribute is too long.");
    else if (!expansion_.takeDefaults(TagAttributes::defaultsOf(tag.attributes, tag.defaultCount)))
      stopForExpansion();
    return !isOver_;
  }
  void stopForAttributes() {
    stop(NSXMLParserInternalError, "An element has too many attributes.");
  }

  void endElement(std::string_view name) {
    open_.close();
    beginText();
    sink_.endElement(name);
  }

  void beginText() noexcept {
    textLength_ = 0;
    textHasBegun_ = !open_.holdsElementsAlone();
  }
  void quotedCharacters(std::string_view text) {
    // A piece of a section lies in the input right behind the one before; another section does not.
    const xmlParserInput& input = *context_->input;
    const auto* const begin = reinterpret_cast<const xmlChar*>(text.data());
    const bool follows =
        quotedLineEnds_.isOpen() && begin > input.base && begin <= input.end && begin[-1] == '\r';
    characters(quotedLineEnds_.told(text, follows), true);
  }
  void characters(std::string_view text, bool isQuoted) {
    textLength_ += text.size();
    if (textLength_ > limits_.textLength)
      return stop(NSXMLParserInternalError, "A text is too long.");
    if (!textHasBegun_ && !isQuoted) {
      const std::size_t blanks = std::min(text.find_first_not_of(kBlanks), text.size());
      if (blanks > 0) sink_.ignorableWhitespace(text.substr(0, blanks));
      text.remove_prefix(blanks);
    }
    if (text.empty() || isOver_) return;
    textHasBegun_ = true;
    sink_.characters(text);
  }

  std::string_view joinedName(const xmlChar* prefix, const xmlChar* localName) {
    if (prefix == nullptr) return viewOf(localName);
    name_.assign(viewOf(prefix)).append(":").append(viewOf(localName));
    return name_;
  }

  void hearOf(const xmlError& error) {
    if (error.level == XML_ERR_FATAL) {
      std::string_view message = error.message == nullptr ? "" : error.message;
      message.remove_suffix(message.ends_with('\n') ? 1 : 0);
      // Its code depends on how many bytes of the piece are left.
      if (message.starts_with("Input is not proper UTF-8") ||
          message.find("detected an error in element content") != message.npos)
        return stop(NSXMLParserInvalidEncodingError, "The bytes are no UTF-8.");
      if (error.code == XML_ERR_DOCUMENT_END && onlyZerosRemain()) {
        isBehindDocument_ = true;
        return end();
      }
      // libxml2 speaks of extra content here too.
      if (error.code == XML_ERR_DOCUMENT_END && context_->instate != XML_PARSER_EPILOG)
        return stopAtTooEarlyEnd();
      return stop(error.code, message);
    }
    // A prefix bound to nothing is told as a fault of namespaces in place of the attribute.
    if (error.domain == XML_FROM_NAMESPACE && error.code == XML_NS_ERR_XML_NAMESPACE &&
        error.str1 != nullptr)
      attributes_.addEmptyPrefix(error.str1);
  }

  void stopAtTooEarlyEnd() {
    if (open_.count() == 0)
      stop(NSXMLParserEmptyDocumentError, "The document holds no element.");
    else
      stop(NSXMLParserPrematureDocumentEndError, "The document ends before its elements do.");
  }

  /// Texts are often handed over with the zero behind them.
  [[nodiscard]] bool onlyZerosRemain() const {
    const xmlParserInput& input = documentInput();
    return context_->instate == XML_PARSER_EPILOG && input.cur < input.end &&
           areZeros({input.cur, input.end}) && areZeros(unconverted());
  }
  void stopBehindDocument() {
    if (!fault_)
      fault_ =
          Fault{XML_ERR_DOCUMENT_END, line_, column_, "Extra content at the end of the document"};
  }

  EventSink& sink_;
  const NSXMLParserLimits limits_;
  ExpansionBudget expansion_;
  PushContext context_;
  bool isOver_ = false;
  bool isBehindDocument_ = false;  // zeros have come, and may go on
  NSInteger line_ = 0;             // where it was over
  NSInteger column_ = 0;
  PieceKeeper pieces_;
  std::optional<Fault> fault_;
  std::exception_ptr thrown_;

  ElementDeclarations declarations_;
  OpenElements open_;
  TagAttributes attributes_;
  UnfinishedTag unfinishedTag_;
  QuotedLineEnds quotedLineEnds_;
  bool textHasBegun_ = true;  // else blanks here are ignorable
  NSUInteger textLength_ = 0;
  std::string name_;
};

xmlSAXHandler PushParser::Session::handlers() {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startDocument = [](void* data) {
    run(data, [](Session& session) {
      xmlSAX2StartDocument(session.context_.get());
      session.sink_.startDocument();
    });
  };
  handler.internalSubset = [](void* data, const xmlChar* name, const xmlChar* publicId,
                              const xmlChar* systemId) {
    run(data, [&](Session& session) {
      xmlSAX2InternalSubset(session.context_.get(), name, publicId, systemId);
    });
  };
  handler.elementDecl = [](void* data, const xmlChar* name, int type, xmlElementContentPtr) {
    run(data, [&](Session& session) { session.declareElement(name, type); });
  };
  handler.attributeDecl = [](void* data, const xmlChar* element, const xmlChar*, int, int,
                             const xmlChar* defaultValue, xmlEnumerationPtr values) {
    xmlFreeEnumeration(values);
    run(data, [&](Session& session) { session.declareAttribute(element, defaultValue); });
  };
  handler.entityDecl = [](void* data, const xmlChar* name, int type, const xmlChar* publicId,
                          const xmlChar* systemId, xmlChar* content) {
    run(data,
        [&](Session& session) { session.declareEntity(name, type, publicId, systemId, content); });
  };
  handler.getEntity = [](void* data, const xmlChar* name) {
    xmlEntityPtr found = nullptr;
    run(data, [&](Session& session) { found = session.entity(name); });
    return found;
  };
  handler.getParameterEntity = [](void* data, const xmlChar* name) {
    xmlEntityPtr found = nullptr;
    run(data, [&](Session& session) { found = session.parameterEntity(name); });
    return found;
  };
  handler.startElementNs = [](void* data, const xmlChar* localName, const xmlChar* prefix,
                              const xmlChar*, int namespaceCount, const xmlChar** namespaces,
                              int attributeCount, int defaultCount, const xmlChar** attributes) {
    run(data, [&](Session& session) {
      session.startElement({session.joinedName(prefix, localName),
                            {namespaces, TagAttributes::kTextsOfANamespace *
                                             static_cast<std::size_t>(namespaceCount)},
                            {attributes, TagAttributes::kTextsOfAnAttribute *
                                             static_cast<std::size_t>(attributeCount)},
                            static_cast<std::size_t>(defaultCount)});
    });
  };
  handler.endElementNs = [](void* data, const xmlChar* localName, const xmlChar* prefix,
                            const xmlChar*) {
    run(data, [&](Session& session) { session.endElement(session.joinedName(prefix, localName)); });
  };
  // One function for both: libxml2 then does not guess which blanks can be ignored.
  handler.characters = handler.ignorableWhitespace = [](void* data, const xmlChar* text,
                                                        int length) {
    run(data, [&](Session& session) { session.characters(viewOf(text, text + length), false); });
  };
  handler.cdataBlock = [](void* data, const xmlChar* text, int length) {
    run(data, [&](Session& session) { session.quotedCharacters(viewOf(text, text + length)); });
  };
  // Its parameter is constant in newer releases.
  handler.serror = [](void* data, auto error) {
    run(data, [&](Session& session) { session.hearOf(*error); });
  };
  return handler;
}

PushParser::PushParser(EventSink& sink, const NSXMLParserLimits& limits)
    : session_(std::make_unique<Session>(sink, limits)) {}
PushParser::~PushParser() = default;

bool PushParser::push(std::span<const std::uint8_t> bytes) { return session_->push(bytes); }
bool PushParser::finish() { return session_->finish(); }
void PushParser::stop(NSInteger code, std::string_view message) { session_->stop(code, message); }
const std::optional<Fault>& PushParser::fault() const noexcept { return session_->fault(); }
NSInteger PushParser::line() const noexcept { return session_->line(); }
NSInteger PushParser::column() const noexcept { return session_->column(); }
TagPlace PushParser::startTag() const noexcept { return session_->startTag(); }

}  // namespace ORLFoundation::internal::xml
