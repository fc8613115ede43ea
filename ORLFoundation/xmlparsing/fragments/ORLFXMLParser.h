/// Turns the events of an XML document into a stack of small handlers, each of which owns one
/// element. A subclass names handlers for the top elements, a handler those of its sub-elements.
///
///     class LedgerParser : public ORLFXMLParser {
///       std::shared_ptr<ORLFXMLParserFragmentHandler> fragmentHandlerForElementName(
///           std::string_view name) override {
///         return name == "ledger" ? std::make_shared<LedgerHandler>() : nullptr;
///       }
///     };
///     std::shared_ptr<const NSError> error;
///     const auto parser = std::make_shared<LedgerParser>();
///     if (!parser->parseData(data, &error)) report(*error);
///
/// The first error of a handler, or of the document, ends the parse, and every operation that
/// parses answers it in its slot. What a handler throws comes out of those operations. A parser may
/// parse again; after a failure the handlers that were on the stack stay there. Runs on the
/// caller's thread, one parse at a time.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/xml/NSXMLParserDelegate.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserFragmentHandler.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSData;
class NSInputStream;
class NSLocale;
class NSURL;

class ORLFXMLParser : public NSObject, public NSXMLParserDelegate {
 public:
  using Handler = std::shared_ptr<ORLFXMLParserFragmentHandler>;

  /// `parse:error:`  Runs a parser that is ready, with this object as its delegate. true only when
  /// the parser succeeds and no handler failed. nil fails without an error.
  bool parse(std::shared_ptr<NSXMLParser> parser, NSErrorSlot error = nullptr);
  /// `parseContentsOfURL:error:`  A file of up to 64 MB is read before its first event, a larger
  /// one piece by piece. Other addresses than those of files go to the loader that a host
  /// installed, see NSXMLParserLoader.h.
  bool parseContentsOfURL(const NSURL& url, NSErrorSlot error = nullptr);
  /// `parseData:error:`
  bool parseData(const NSData& data, NSErrorSlot error = nullptr);
  /// `parseStream:error:`  Reads piece by piece.
  bool parseStream(const std::shared_ptr<NSInputStream>& stream, NSErrorSlot error = nullptr);
  /// `abortParsing`  Stops the parse that runs; it fails with code 512 unless it failed already.
  void abortParsing();

  /// `parserError`  The first error of the last parse.
  [[nodiscard]] std::shared_ptr<const NSError> parserError() const { return parserError_; }
  void setParserError(std::shared_ptr<const NSError> error) { parserError_ = std::move(error); }
  /// `parser`  The one that runs now, else nil. Not held.
  [[nodiscard]] std::shared_ptr<NSXMLParser> parser() const { return parser_.lock(); }
  /// What becomes of an element that nobody claims. 0: code 86, and the parse stops. 2: its tags
  /// are skipped, and its sub-elements are offered to the handler around it. Any other: it is
  /// skipped with all that it contains.
  [[nodiscard]] std::int32_t unhandledElementBehavior() const noexcept { return behavior_; }
  void setUnhandledElementBehavior(std::int32_t behavior) noexcept { behavior_ = behavior; }

  /// Of the open elements, the innermost last.
  [[nodiscard]] const std::vector<Handler>& fragmentHandlerStack() const noexcept { return stack_; }
  /// `currentFragmentHandler`  nil for an empty stack.
  [[nodiscard]] Handler currentFragmentHandler() const {
    return stack_.empty() ? nullptr : stack_.back();
  }
  /// `pushFragmentHandler:`  nil is ignored.
  void pushFragmentHandler(Handler handler);
  /// `popFragmentHandler`  nil for an empty stack.
  Handler popFragmentHandler();
  /// `parentFragmentHandlerForHandler:`  The handler below it on the stack, or the last one for a
  /// handler that is not there; in place of one that skips an element, the one around that element.
  [[nodiscard]] Handler parentFragmentHandlerForHandler(const Handler& handler) const;
  /// `fragementErrorOccurred:`  Keeps the error and stops the parse, unless there was one before;
  /// nil is ignored.
  void fragementErrorOccurred(const std::shared_ptr<const NSError>& error);

  /// `fragmentHandlerForElementName:`  For subclasses: the handler of an element that the handler
  /// around it did not claim. nil here.
  [[nodiscard]] virtual Handler fragmentHandlerForElementName(std::string_view name);
  /// `didStartDocument`, `didEndDocument`  For subclasses.
  virtual void didStartDocument() {}
  virtual void didEndDocument() {}

  /// `USLocal`  "en_US": attributes are read the same everywhere. Safe on any thread.
  [[nodiscard]] static const std::shared_ptr<NSLocale>& USLocal();
  /// `decimalValueForString:`  nil for nil; not-a-number for a text that is no number.
  [[nodiscard]] static std::optional<NSDecimalNumber> decimalValueForString(
      const std::optional<std::string>& text);
  /// `integerValueForString:`  nil for nil; the whole number at the text's beginning, else 0.
  [[nodiscard]] static std::optional<long long> integerValueForString(
      const std::optional<std::string>& text);
  /// `boolValueForString:`  "YES" and "NO" in any case; nil for all else.
  [[nodiscard]] static std::optional<bool> boolValueForString(
      const std::optional<std::string>& text);
  /// `stringValueNamed:fromAttributes:`  and the like: the attribute read as the operations above
  /// do; nil when it is absent, or there are no attributes.
  [[nodiscard]] static std::optional<std::string> stringValueNamed(
      std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes);
  /// `boolValueNamed:fromAttributes:`
  [[nodiscard]] static std::optional<bool> boolValueNamed(
      std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes);
  /// `integerValueNamed:fromAttributes:`
  [[nodiscard]] static std::optional<long long> integerValueNamed(
      std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes);
  /// `realValueNamed:fromAttributes:`  The number at the text's beginning, else 0.
  [[nodiscard]] static std::optional<double> realValueNamed(
      std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes);
  /// `decimalValueNamed:fromAttributes:`
  [[nodiscard]] static std::optional<NSDecimalNumber> decimalValueNamed(
      std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes);
  /// `selectorValueNamed:fromAttributes:`  The name of an operation, as it stands.
  [[nodiscard]] static std::optional<std::string> selectorValueNamed(
      std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes);

  void parserDidStartDocument(NSXMLParser& parser) override;
  void parserDidEndDocument(NSXMLParser& parser) override;
  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override;
  void parserDidEndElement(NSXMLParser& parser, std::string_view didEndElement,
                           std::optional<std::string_view> namespaceURI,
                           std::optional<std::string_view> qualifiedName) override;
  void parserFoundCharacters(NSXMLParser& parser, std::string_view foundCharacters) override;
  void parserFoundIgnorableWhitespace(NSXMLParser& parser,
                                      std::string_view foundIgnorableWhitespace) override;
  void parserParseErrorOccurred(NSXMLParser& parser,
                                const std::shared_ptr<const NSError>& error) override;

  [[nodiscard]] std::string className() const override { return "ORLFXMLParser"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  [[nodiscard]] Handler handlerForElement(std::string_view name);
  [[nodiscard]] std::shared_ptr<ORLFXMLParser> self();

  std::vector<Handler> stack_;
  std::int32_t behavior_ = 0;
  std::shared_ptr<const NSError> parserError_;
  std::weak_ptr<NSXMLParser> parser_;
};

}  // namespace ORLFoundation
