#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/files/NSDataReading.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/support/diagnostics/ORLFConditionalLog.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserIgnoreFragmentHandler.h>
#include <ORLFoundation/xmlparsing/fragments/RefusedElement.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

using namespace internal::fragments;

namespace {

constexpr std::string_view kLogging = "ORLFXMLParserLogging";
constexpr std::int32_t kRefuse = 0;
constexpr std::int32_t kSkipOnlyTheTags = 2;
constexpr std::size_t kUsualDepth = 10;

void logError(std::string_view event, const NSError& error) {
  NSLog(std::string(event) + ": " + error.description());
}

/// In place of a handler that skips an element, the one around that element.
ORLFXMLParser::Handler logicalHandler(const ORLFXMLParser::Handler& handler) {
  const auto* skipping = handler->skippingHandler();
  return skipping == nullptr ? handler : skipping->logicalParent();
}

}  // namespace

bool ORLFXMLParser::parse(std::shared_ptr<NSXMLParser> parser, NSErrorSlot error) {
  const auto receiver = self();  // a handler may let go of the last owner
  parserError_ = nullptr;
  if (parser) parser->setDelegate(receiver);
  parser_ = parser;
  bool isParsed = false;
  try {
    isParsed = parser && parser->parse() && parserError_ == nullptr;
  } catch (...) {
    parser_.reset();
    throw;
  }
  parser_.reset();
  return isParsed || NSFillErrorSlot(error, parserError_);
}

bool ORLFXMLParser::parseContentsOfURL(const NSURL& url, NSErrorSlot error) {
  // What cannot be read whole is left to the events' parser, which tells why.
  if (const auto data = dataWithContentsOfURL(url, 0)) return parseData(*data, error);
  return parse(std::make_shared<NSXMLParser>(url), error);
}
bool ORLFXMLParser::parseData(const NSData& data, NSErrorSlot error) {
  return parse(std::make_shared<NSXMLParser>(data), error);
}
bool ORLFXMLParser::parseStream(const std::shared_ptr<NSInputStream>& stream, NSErrorSlot error) {
  return parse(std::make_shared<NSXMLParser>(stream), error);
}

void ORLFXMLParser::abortParsing() {
  if (const auto running = parser()) running->abortParsing();
}

std::shared_ptr<ORLFXMLParser> ORLFXMLParser::self() {
  return std::static_pointer_cast<ORLFXMLParser>(shared_from_this());
}

void ORLFXMLParser::pushFragmentHandler(Handler handler) {
  if (!handler) return;
  if (stack_.capacity() == 0) stack_.reserve(kUsualDepth);
  stack_.push_back(std::move(handler));
}

ORLFXMLParser::Handler ORLFXMLParser::popFragmentHandler() {
  if (stack_.empty()) return nullptr;
  Handler popped = std::move(stack_.back());
  stack_.pop_back();
  return popped;
}

ORLFXMLParser::Handler ORLFXMLParser::parentFragmentHandlerForHandler(
    const Handler& handler) const {
  const auto* skipping = handler ? handler->skippingHandler() : nullptr;
  if (skipping != nullptr && skipping->logicalParent()) return skipping->logicalParent();
  if (stack_.empty()) return nullptr;
  const auto found = std::ranges::find_if(stack_, [&](const Handler& on) {
    return handler != nullptr && (on == handler || handler->isEqual(on.get()));
  });
  if (found == stack_.begin()) return nullptr;
  return logicalHandler(*(found - 1));
}

void ORLFXMLParser::fragementErrorOccurred(const std::shared_ptr<const NSError>& error) {
  if (!error || parserError_) return;
  logError("fragementErrorOccurred", *error);
  parserError_ = error;
  abortParsing();
}

ORLFXMLParser::Handler ORLFXMLParser::fragmentHandlerForElementName(std::string_view /*name*/) {
  return nullptr;
}

ORLFXMLParser::Handler ORLFXMLParser::handlerForElement(std::string_view name) {
  if (const Handler current = currentFragmentHandler())
    if (auto claimed = current->subFragmentHandlerForElementName(name)) return claimed;
  if (auto claimed = fragmentHandlerForElementName(name)) return claimed;
  if (behavior_ == kRefuse) return nullptr;
  ORLFConditionalLog(kLogging, "Unhandled element: %@", name);
  return std::make_shared<ORLFXMLParserIgnoreFragmentHandler>(behavior_ == kSkipOnlyTheTags);
}

void ORLFXMLParser::parserDidStartDocument(NSXMLParser& /*parser*/) { didStartDocument(); }
void ORLFXMLParser::parserDidEndDocument(NSXMLParser& /*parser*/) { didEndDocument(); }

void ORLFXMLParser::parserDidStartElement(NSXMLParser& /*parser*/, const NSXMLStartTag& tag) {
  const std::string_view name = tag.didStartElement;
  const Handler handler = handlerForElement(name);
  if (!handler) return fragementErrorOccurred(refusedElement());
  // The handler is not on the stack yet, so that this is the innermost one.
  const Handler parent = parentFragmentHandlerForHandler(handler);
  handler->beginFragmentWithParent(parent, self());
  pushFragmentHandler(handler);
  std::shared_ptr<const NSError> error;
  if (parent) error = parent->willStartSubElement(name);
  if (!error) error = handler->startElement(name, tag.attributes);
  if (error) fragementErrorOccurred(error);
}

void ORLFXMLParser::parserDidEndElement(NSXMLParser& /*parser*/, std::string_view didEndElement,
                                        std::optional<std::string_view> /*namespaceURI*/,
                                        std::optional<std::string_view> /*qualifiedName*/) {
  const Handler current = currentFragmentHandler();
  if (!current) return;
  auto error = current->endElement(didEndElement);
  if (!error) {
    if (const Handler parent = parentFragmentHandlerForHandler(currentFragmentHandler()))
      error = parent->didFinishSubElement(didEndElement);
  }
  if (error) return fragementErrorOccurred(error);
  if (const Handler ended = popFragmentHandler()) ended->endFragment();
}

void ORLFXMLParser::parserFoundCharacters(NSXMLParser& /*parser*/,
                                          std::string_view foundCharacters) {
  if (const Handler current = currentFragmentHandler())
    if (const auto error = current->foundCharacters(foundCharacters)) fragementErrorOccurred(error);
}

void ORLFXMLParser::parserFoundIgnorableWhitespace(NSXMLParser& /*parser*/,
                                                   std::string_view foundIgnorableWhitespace) {
  if (const Handler current = currentFragmentHandler())
    fragementErrorOccurred(current->foundIgnorableWhitespace(foundIgnorableWhitespace));
}

void ORLFXMLParser::parserParseErrorOccurred(NSXMLParser& /*parser*/,
                                             const std::shared_ptr<const NSError>& error) {
  if (parserError_) return;
  logError("parseErrorOccurred", *error);
  parserError_ = error;
}

const NSKeyTable& ORLFXMLParser::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readOnly<&ORLFXMLParser::currentFragmentHandler>("currentFragmentHandler"),
          NSKey::readOnly<&ORLFXMLParser::parser>("parser"),
          NSKey::readOnly<&ORLFXMLParser::parserError>("parserError"),
          NSKey::readWrite<&ORLFXMLParser::unhandledElementBehavior,
                           &ORLFXMLParser::setUnhandledElementBehavior>("unhandledElementBehavior"),
      });
  return table;
}

}  // namespace ORLFoundation
