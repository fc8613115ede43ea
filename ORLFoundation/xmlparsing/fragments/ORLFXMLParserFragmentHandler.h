/// Takes one element of a document, with its texts, and names the handlers of its sub-elements.
/// `ORLFXMLParser` keeps the handlers of the open elements on a stack and hands each event to the
/// innermost. Most handlers derive from `ORLFXMLParserContentHandler`, which collects text, or from
/// `ORLFXMLParserFragmentHandlerBase`, which answers every question with no.
///
/// Operations that give an error record succeed with nil; anything else stops the parse. Names and
/// texts are valid during the call alone.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string_view>

namespace ORLFoundation {

class NSDictionary;
class NSError;
class ORLFXMLParser;
class ORLFXMLParserIgnoreFragmentHandler;

class ORLFXMLParserFragmentHandler : public NSObject {
 public:
  using Error = std::shared_ptr<const NSError>;

  /// `subFragmentHandlerForElementName:`  The handler for a sub-element of this one; nil leaves it
  /// to the parser.
  [[nodiscard]] virtual std::shared_ptr<ORLFXMLParserFragmentHandler>
  subFragmentHandlerForElementName(std::string_view name) = 0;
  /// `beginFragmentWithParent:parser:`  The handler is about to take an element. The parent is
  /// never one that skips an element; nil for the outermost.
  virtual void beginFragmentWithParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
                                       const std::shared_ptr<ORLFXMLParser>& parser) = 0;
  /// `endFragment`  The element has ended, and the handler is off the stack. Not called for what a
  /// failed parse leaves there.
  virtual void endFragment() = 0;
  /// `willStartSubElement:`, `didFinishSubElement:`  Told to the parent, around a sub-element that
  /// another handler takes: before that one's `startElement`, and after its `endElement`.
  [[nodiscard]] virtual Error willStartSubElement(std::string_view name) = 0;
  [[nodiscard]] virtual Error didFinishSubElement(std::string_view name) = 0;
  /// `startElement:attributes:`  Names of attributes to texts.
  [[nodiscard]] virtual Error startElement(std::string_view name,
                                           const std::shared_ptr<NSDictionary>& attributes) = 0;
  /// `endElement:`
  [[nodiscard]] virtual Error endElement(std::string_view name) = 0;
  /// `foundCharacters:`  A text may come in several pieces.
  [[nodiscard]] virtual Error foundCharacters(std::string_view text) = 0;
  /// `foundIgnorableWhitespace:`
  [[nodiscard]] virtual Error foundIgnorableWhitespace(std::string_view text) = 0;

  /// This very handler where it skips an element, else null. The parser asks with every tag.
  [[nodiscard]] virtual const ORLFXMLParserIgnoreFragmentHandler* skippingHandler() const noexcept {
    return nullptr;
  }

  // Optional. A class that overrides one of these says so, since handlers of skipped elements ask.
  [[nodiscard]] virtual bool takesUnhandledCharacters() const { return false; }
  /// `unhandledSubElement:foundCharacters:`  Text inside of a skipped sub-element, and its
  /// ignorable whitespace, which comes this way too if `takesUnhandledIgnorableWhitespace`.
  virtual void unhandledSubElementFoundCharacters(std::string_view /*name*/,
                                                  std::string_view /*text*/) {}
  [[nodiscard]] virtual bool takesUnhandledIgnorableWhitespace() const { return false; }
  /// `unhandledSubElement:foundIgnorableWhitespace:`  Never called by the handlers of skipped
  /// elements: they hand whitespace over as characters. This is required.
  virtual void unhandledSubElementFoundIgnorableWhitespace(std::string_view /*name*/,
                                                           std::string_view /*text*/) {}
};

}  // namespace ORLFoundation
