#include <ORLFoundation/platform/xml/internal/PushParser.h>

#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/internal/AttributeDictionary.h>
#include <ORLFoundation/platform/xml/internal/LineEndKeeper.h>
#include <ORLFoundation/platform/xml/internal/QuietThread.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <new>
#include <set>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::xml {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
/// What libxml2 is given at a time: an abort is heeded after so much at most.
constexpr std::size_t kPiece = 65'536;
/// What a reference costs beside the text that takes its place, so that empty entities end too.
constexpr NSUInteger kReferenceCost = 16;

std::string_view viewOf(const xmlChar* text) noexcept {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}
std::string_view viewOf(const xmlChar* begin, const xmlChar* end) noexcept {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

struct FreeContext {
  void operator()(xmlParserCtxt* context) const noexcept {
    xmlFreeDoc(context->myDoc);  // it holds the document's declarations
    context->myDoc = nullptr;
    xmlFreeParserCtxt(context);
  }
};

const std::shared_ptr<NSDictionary>& noAttributes() {
  static const std::shared_ptr<NSDictionary> none = std::make_shared<AttributeDictionary>();
  return none;
}

}  // namespace

/// What the callbacks see. Entities' texts are read by parsers that libxml2 makes for them, with
/// the same callbacks and this same session.
class PushParser::Session {
 public:
  Session(EventSink& sink, const NSXMLParserLimits& limits) : sink_(sink), limits_(limits) {
    static std::once_flag initialized;
    std::call_once(initialized, xmlInitParser);
    xmlSAXHandler handler = handlers();
    context_.reset(xmlCreatePushParserCtxt(&handler, this, nullptr, 0, nullptr));
    if (!context_) throw std::bad_alloc();
    // The limits of libxml2's own cannot be chosen, so they are lifted for those here.
    xmlCtxtUseOptions(context_.get(), XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOWARNING);
    xmlDictSetLimit(context_->dict, limits_.namesLength);
    // For attributes' values. Of external entities, the option to load them stays off.
    context_->replaceEntities = 1;
  }

  bool push(std::span<const std::uint8_t> bytes) {
    if (isBehindDocument_ && !std::ranges::all_of(bytes, isZero)) stopBehindDocument();
    while (!bytes.empty() && !isOver_) {
      const auto piece = bytes.first(std::min(bytes.size(), kPiece));
      feed(lineEnds_.completed(piece), false);
      bytes = bytes.subspan(piece.size());
      const auto waiting = context_->input->end - context_->input->cur;
      if (!isOver_ && static_cast<NSUInteger>(waiting) > limits_.textLength)
        stop(NSXMLParserInternalError, "A piece of markup or text is too long.");
    }
    return isBehindDocument_ ? !fault_ : !isOver_;
  }

  bool finish() {
    if (!isOver_) feed(lineEnds_.kept(), false);
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
  static bool isZero(std::uint8_t byte) noexcept { return byte == 0; }
  static Session& of(void* data) noexcept { return *static_cast<Session*>(data); }

  /// The document's own, though a parameter entity is being read.
  [[nodiscard]] const xmlParserInput& documentInput() const noexcept {
    return *(context_->inputNr > 0 ? context_->inputTab[0] : context_->input);
  }

  /// libxml2 goes on to the end of the piece that it was given; its place must be read before.
  void end() noexcept {
    line_ = line();
    column_ = column();
    isOver_ = true;
    context_->disableSAX = 1;
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
    // Bytes that cannot be converted halt the parser without a fault of the document.
    if (!isOver_ && !isLast && context_->disableSAX != 0)
      stop(NSXMLParserInvalidEncodingError, "The bytes do not fit the document's encoding.");
    if (!isOver_ && isLast && context_->wellFormed == 0)
      stop(context_->errNo, "The document is not well-formed.");
  }

  // Declarations.
  void declareElement(const xmlChar* name, int type) {
    if (type == XML_ELEMENT_TYPE_ELEMENT) elementOnly_.emplace(viewOf(name));
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
    const NSUInteger cost = static_cast<NSUInteger>(std::max(found->length, 0)) + kReferenceCost;
    if (cost > limits_.entityExpansion - expansion_) {
      stop(NSXMLParserEntityRefLoopError, "The document's entities expand too far.");
      return nullptr;
    }
    expansion_ += cost;
    return found;
  }

  // Content.
  void startElement(const xmlChar* localName, const xmlChar* prefix, std::size_t namespaceCount,
                    const xmlChar** namespaces, std::size_t attributeCount,
                    const xmlChar** attributes) {
    if (depth_ >= limits_.elementDepth)
      return stop(NSXMLParserInternalError, "The elements are nested too deep.");
    ++depth_;
    const std::string_view name = joinedName(prefix, localName);
    if (!elementOnly_.empty()) openIsElementOnly_.push_back(elementOnly_.contains(name));
    beginText();
    if (namespaceCount + attributeCount + emptyPrefixes_.size() == 0)
      return sink_.startElement(name, noAttributes());
    renewAttributes();
    takeNamespaces({namespaces, 2 * namespaceCount});
    if (takeAttributes({attributes, 5 * attributeCount})) sink_.startElement(name, attributes_);
  }

  /// Takes the dictionary of the element before, unless somebody kept it.
  void renewAttributes() {
    if (attributes_ == nullptr || attributes_.use_count() > 1) {
      auto fresh = std::make_shared<AttributeDictionary>();
      fields_ = fresh.get();
      attributes_ = std::move(fresh);
    }
    // Whoever let go of it last, on another thread perhaps, is done with it.
    std::atomic_thread_fence(std::memory_order_acquire);
    fields_->clear();
  }

  void takeNamespaces(std::span<const xmlChar*> pairs) {
    for (std::size_t at = 0; at < pairs.size(); at += 2) {
      const bool isDefault = pairs[at] == nullptr;
      fields_->add(isDefault ? "xmlns" : "xmlns:", viewOf(pairs[at]), viewOf(pairs[at + 1]));
    }
    for (const std::string& prefix : emptyPrefixes_)
      if (!fields_->has("xmlns:", prefix)) fields_->add("xmlns:", prefix, "");
    emptyPrefixes_.clear();
  }
  bool takeAttributes(std::span<const xmlChar*> fields) {
    for (std::size_t at = 0; at < fields.size(); at += 5) {
      const std::string_view value = viewOf(fields[at + 3], fields[at + 4]);
      if (value.size() > limits_.textLength) {
        stop(NSXMLParserInternalError, "The value of an attribute is too long.");
        return false;
      }
      prefix_.assign(viewOf(fields[at + 1]));
      if (fields[at + 1] != nullptr) prefix_ += ':';
      fields_->add(prefix_, viewOf(fields[at]), value);
    }
    return true;
  }

  void endElement(const xmlChar* localName, const xmlChar* prefix) {
    --depth_;
    if (!openIsElementOnly_.empty()) openIsElementOnly_.pop_back();
    beginText();
    sink_.endElement(joinedName(prefix, localName));
  }

  void beginText() noexcept {
    textLength_ = 0;
    textHasBegun_ = openIsElementOnly_.empty() || !openIsElementOnly_.back();
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
      return stop(error.code, message);
    }
    // A prefix bound to nothing is told as a fault of namespaces in place of the attribute.
    if (error.domain == XML_FROM_NAMESPACE && error.code == XML_NS_ERR_XML_NAMESPACE &&
        error.str1 != nullptr)
      emptyPrefixes_.emplace_back(error.str1);
  }

  /// Texts are often handed over with the zero behind them.
  [[nodiscard]] bool onlyZerosRemain() const {
    const xmlParserInput& input = documentInput();
    return context_->instate == XML_PARSER_EPILOG && input.cur < input.end &&
           std::all_of(input.cur, input.end, isZero);
  }
  void stopBehindDocument() {
    fault_ =
        Fault{XML_ERR_DOCUMENT_END, line_, column_, "Extra content at the end of the document"};
  }

  EventSink& sink_;
  const NSXMLParserLimits limits_;
  std::unique_ptr<xmlParserCtxt, FreeContext> context_;
  bool isOver_ = false;
  bool isBehindDocument_ = false;  // zeros have come, and may go on
  NSInteger line_ = 0;             // where it was over
  NSInteger column_ = 0;
  LineEndKeeper lineEnds_;
  std::optional<Fault> fault_;
  std::exception_ptr thrown_;

  std::set<std::string, std::less<>> elementOnly_;  // by the document's DTD
  std::vector<bool> openIsElementOnly_;  // of the open elements, where the DTD knows any such
  bool textHasBegun_ = true;             // else blanks here are ignorable
  NSUInteger depth_ = 0;
  NSUInteger textLength_ = 0;
  NSUInteger expansion_ = 0;
  std::string name_;
  std::string prefix_;
  std::vector<std::string> emptyPrefixes_;  // of the tag that is being read
  std::shared_ptr<NSDictionary> attributes_;
  AttributeDictionary* fields_ = nullptr;  // the same
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
    run(data, [&](Session& session) {
      found = session.charged(xmlGetParameterEntity(session.context_->myDoc, name));
    });
    return found;
  };
  handler.startElementNs = [](void* data, const xmlChar* localName, const xmlChar* prefix,
                              const xmlChar*, int namespaceCount, const xmlChar** namespaces,
                              int attributeCount, int, const xmlChar** attributes) {
    run(data, [&](Session& session) {
      session.startElement(localName, prefix, static_cast<std::size_t>(namespaceCount), namespaces,
                           static_cast<std::size_t>(attributeCount), attributes);
    });
  };
  handler.endElementNs = [](void* data, const xmlChar* localName, const xmlChar* prefix,
                            const xmlChar*) {
    run(data, [&](Session& session) { session.endElement(localName, prefix); });
  };
  // One function for both: libxml2 then does not guess which blanks can be ignored.
  handler.characters = handler.ignorableWhitespace = [](void* data, const xmlChar* text,
                                                        int length) {
    run(data, [&](Session& session) { session.characters(viewOf(text, text + length), false); });
  };
  handler.cdataBlock = [](void* data, const xmlChar* text, int length) {
    run(data, [&](Session& session) { session.characters(viewOf(text, text + length), true); });
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
