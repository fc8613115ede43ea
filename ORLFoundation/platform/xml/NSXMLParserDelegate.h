/// What a parser tells of a document, in the document's order, on the thread that parses. Each
/// operation does nothing unless a delegate overrides it. Texts are valid during the call alone.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>

#include <memory>
#include <optional>
#include <string_view>

namespace ORLFoundation {

class NSError;
class NSXMLParser;

/// A start tag, with the labels of its event. Names are as written, prefix included; the parser
/// reads no meaning into prefixes, so that `namespaceURI` and `qualifiedName` are nil.
struct NSXMLStartTag {
  std::string_view didStartElement;
  std::optional<std::string_view> namespaceURI;
  std::optional<std::string_view> qualifiedName;
  /// Names to texts: what was written, `xmlns` attributes too, and what the document's own DTD
  /// gives by default. May be kept.
  const std::shared_ptr<NSDictionary>& attributes;
};

class NSXMLParserDelegate {
 public:
  virtual ~NSXMLParserDelegate() = default;

  /// `parserDidStartDocument:`  Once a document's first markup is there.
  virtual void parserDidStartDocument(NSXMLParser& /*parser*/) {}
  /// `parserDidEndDocument:`  After the end of a document without an error.
  virtual void parserDidEndDocument(NSXMLParser& /*parser*/) {}
  /// `parser:didStartElement:namespaceURI:qualifiedName:attributes:`
  virtual void parserDidStartElement(NSXMLParser& /*parser*/, const NSXMLStartTag& /*tag*/) {}
  /// `parser:didEndElement:namespaceURI:qualifiedName:`  For empty-element tags too.
  virtual void parserDidEndElement(NSXMLParser& /*parser*/, std::string_view /*didEndElement*/,
                                   std::optional<std::string_view> /*namespaceURI*/,
                                   std::optional<std::string_view> /*qualifiedName*/) {}
  /// `parser:foundCharacters:`  Text, resolved references and the insides of CDATA. One text may
  /// come in several pieces, cut between characters, and how it is cut means nothing.
  virtual void parserFoundCharacters(NSXMLParser& /*parser*/,
                                     std::string_view /*foundCharacters*/) {}
  /// `parser:foundIgnorableWhitespace:`  Blanks and line ends between the children of an element of
  /// which the document's own DTD says that it holds elements alone. Once such an element holds
  /// other text, what follows up to the next tag is told as characters.
  virtual void parserFoundIgnorableWhitespace(NSXMLParser& /*parser*/,
                                              std::string_view /*foundIgnorableWhitespace*/) {}
  /// `parser:parseErrorOccurred:`  Once, as the last event, for the error that ended the parse.
  virtual void parserParseErrorOccurred(NSXMLParser& /*parser*/,
                                        const std::shared_ptr<const NSError>& /*error*/) {}
};

}  // namespace ORLFoundation
