/// Reads an XML document once, from its first byte to its last, and tells a delegate what it finds.
/// No tree is kept: memory stays the same however long the document is.
///
///     class Names : public NSXMLParserDelegate {
///       void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override {
///         if (tag.didStartElement == "end") parser.abortParsing();
///       }
///     };
///     const auto names = std::make_shared<Names>();
///     NSXMLParser parser(data);
///     parser.setDelegate(names);
///     if (!parser.parse()) show(parser.parserError()->localizedDescription());
///
/// Encodings are told by the document itself. Of a DTD the part inside of the document is read; its
/// entities are replaced within limits. Nothing outside of the document is ever opened: an external
/// DTD is passed over, and a reference to an external entity, or to one that nobody declared, is an
/// error. Declarations of the prefix `xml`, and ones that bind a prefix to the reserved addresses
/// of `xml` and `xmlns`, are left out of the attributes; a prefix that nobody declared is no error.
/// Zero bytes behind a document are passed over.
///
/// What a delegate throws ends the parse and comes out of `parse` again. One thread at a time.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/platform/xml/NSXMLParserDelegate.h>
#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>

#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace ORLFoundation {

class NSInputStream;
namespace internal::xml {
class PushParser;
struct Fault;
}  // namespace internal::xml

/// The domain of errors in documents. Codes below 512 are those of libxml2, of which these have
/// meanings of our own too.
inline constexpr std::string_view NSXMLParserErrorDomain = "NSXMLParserErrorDomain";
enum NSXMLParserError : NSInteger {
  NSXMLParserInternalError = 1,       ///< A limit of depth or size.
  NSXMLParserEmptyDocumentError = 4,  ///< No element.
  NSXMLParserPrematureDocumentEndError =
      5,                                  ///< An end before that of the elements, or more behind.
  NSXMLParserUndeclaredEntityError = 26,  ///< A reference to an entity that nobody declared.
  NSXMLParserEntityIsExternalError = 29,  ///< A reference to an external entity.
  NSXMLParserInvalidEncodingError = 81,   ///< Bytes that the document's encoding does not know.
  NSXMLParserEntityRefLoopError = 89,     ///< Entities that hold themselves, or expand too far.
  NSXMLParserDelegateAbortedParseError = 512,
};
/// Keys of the user information of such errors: whole numbers, the first line and column being 1,
/// and the message without its place. Columns count as libxml2 does, mostly bytes of UTF-8.
inline constexpr std::string_view NSXMLParserErrorLineNumberKey = "NSXMLParserErrorLineNumber";
inline constexpr std::string_view NSXMLParserErrorColumnKey = "NSXMLParserErrorColumn";
inline constexpr std::string_view NSXMLParserErrorMessageKey = "NSXMLParserErrorMessage";

class NSXMLParser : public NSObject {
 public:
  /// `initWithData:`
  explicit NSXMLParser(NSData data);
  /// `initWithStream:`  A stream that is not open yet is opened by `parse`, and closed after it.
  /// null reads as a document without bytes.
  explicit NSXMLParser(std::shared_ptr<NSInputStream> stream);
  /// `initWithContentsOfURL:`  Nothing is opened before `parse`. Addresses other than those of
  /// files go to the loader that a host installed, see NSXMLParserLoader.h.
  explicit NSXMLParser(NSURL contentsOfURL);
  ~NSXMLParser() override;

  /// `parse`  true for a document that was read to its end without an error. A parser of data or an
  /// address may parse again, from the beginning. Called from inside of its own events it answers
  /// false and does nothing.
  [[nodiscard]] bool parse();
  /// `abortParsing`  From inside of an event: no other follows but that of the error, of code
  /// `NSXMLParserDelegateAbortedParseError` and with the place of this call. At any other time it
  /// does nothing.
  void abortParsing();
  /// `parserError`  Why the last parse ended early; nil when it did not, and after an exception
  /// from an event before that of the error. A stream or a loader that failed gives its own error.
  [[nodiscard]] const std::shared_ptr<const NSError>& parserError() const noexcept {
    return error_;
  }
  /// `lineNumber`, `columnNumber`  How far the parser has read: behind the tag or text that an
  /// event tells of. 0 before the first parse. Inside of an entity's text, the place of the
  /// reference.
  [[nodiscard]] NSInteger lineNumber() const;
  [[nodiscard]] NSInteger columnNumber() const;
  /// Where the tag begins that `parserDidStartElement` tells of, during that call; at other times
  /// they mean nothing. Of a tag in an entity's text, the place behind the reference.
  [[nodiscard]] NSInteger startTagLineNumber() const;
  [[nodiscard]] NSInteger startTagColumnNumber() const;

  /// Not held, but for a parse that runs: whoever is set meanwhile hears of the next one.
  [[nodiscard]] std::shared_ptr<NSXMLParserDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(std::weak_ptr<NSXMLParserDelegate> delegate) noexcept {
    delegate_ = std::move(delegate);
  }
  /// Of the parses to come.
  [[nodiscard]] const NSXMLParserLimits& limits() const noexcept { return limits_; }
  void setLimits(const NSXMLParserLimits& limits) noexcept { limits_ = limits; }

  [[nodiscard]] std::string className() const override { return "NSXMLParser"; }

 private:
  struct Place {
    NSInteger line = 0;
    NSInteger column = 0;
  };

  void readSource(internal::xml::PushParser& parser);
  void readStream(NSInputStream& stream, internal::xml::PushParser& parser);
  void readAddress(const NSURL& url, internal::xml::PushParser& parser);
  [[nodiscard]] std::shared_ptr<const NSError> errorOf(const internal::xml::Fault& fault) const;
  [[nodiscard]] Place place() const;
  [[nodiscard]] Place startTagPlace() const;

  std::variant<NSData, std::shared_ptr<NSInputStream>, NSURL> source_;
  std::weak_ptr<NSXMLParserDelegate> delegate_;
  NSXMLParserLimits limits_;
  std::shared_ptr<const NSError> error_;
  internal::xml::PushParser* running_ = nullptr;
  Place lastPlace_;
};

}  // namespace ORLFoundation
