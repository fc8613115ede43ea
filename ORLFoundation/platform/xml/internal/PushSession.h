/// What one parse sees of its document. Entities' texts are read by parsers that libxml2 makes for
/// them, with the same callbacks and this same session.
#pragma once

#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>
#include <ORLFoundation/platform/xml/internal/ElementDeclarations.h>
#include <ORLFoundation/platform/xml/internal/ExpansionBudget.h>
#include <ORLFoundation/platform/xml/internal/OpenElements.h>
#include <ORLFoundation/platform/xml/internal/PieceKeeper.h>
#include <ORLFoundation/platform/xml/internal/PushContext.h>
#include <ORLFoundation/platform/xml/internal/PushParser.h>
#include <ORLFoundation/platform/xml/internal/QuotedLineEnds.h>
#include <ORLFoundation/platform/xml/internal/TagAttributes.h>
#include <ORLFoundation/platform/xml/internal/UnfinishedTag.h>
#include <libxml/parser.h>

#include <cstddef>
#include <exception>

namespace ORLFoundation::internal::xml {

class PushParser::Session {
 public:
  Session(EventSink& sink, const NSXMLParserLimits& limits);

  bool push(std::span<const std::uint8_t> bytes);
  bool finish();
  void stop(NSInteger code, std::string_view message);

  [[nodiscard]] const std::optional<Fault>& fault() const noexcept { return fault_; }
  [[nodiscard]] NSInteger line() const noexcept { return isOver_ ? line_ : documentInput().line; }
  [[nodiscard]] NSInteger column() const noexcept {
    return isOver_ ? column_ : documentInput().col;
  }
  [[nodiscard]] TagPlace startTag() const noexcept;

 private:
  struct Tag {
    std::string_view name;
    TagAttributes::Texts namespaces;
    TagAttributes::Texts attributes;
    std::size_t defaultCount;  // of the attributes, the last ones
  };

  // What libxml2 calls.
  static xmlSAXHandler handlers();
  static Session& of(void* data) noexcept { return *static_cast<Session*>(data); }
  template <class Step>
  static void run(void* data, Step&& step) noexcept;

  // Pieces, and how a parse ends.
  void feed(std::span<const std::uint8_t> bytes, bool isLast);
  void boundUnfinishedMarkup();
  [[nodiscard]] std::string_view unfinished() const noexcept;
  [[nodiscard]] NSUInteger place() const noexcept;
  [[nodiscard]] const xmlParserInput& documentInput() const noexcept;
  [[nodiscard]] std::span<const std::uint8_t> unconverted() const noexcept;
  [[nodiscard]] bool onlyZerosRemain() const;
  void end() noexcept;
  void hearOf(const xmlError& error);
  void stopAtTooEarlyEnd();
  void stopBehindDocument();

  // Declarations.
  void declareElement(const xmlChar* name, int type);
  void declareAttribute(const xmlChar* element, const xmlChar* defaultValue);
  void declareEntity(const xmlChar* name, int type, const xmlChar* publicId,
                     const xmlChar* systemId, xmlChar* content);

  // References.
  xmlEntityPtr entity(const xmlChar* name);
  xmlEntityPtr charged(xmlEntityPtr found);
  xmlEntityPtr parameterEntity(const xmlChar* name);
  void stopForExpansion();

  // Content.
  void startElement(const Tag& tag);
  bool isWithinLimits(const Tag& tag);
  void stopForAttributes();
  void endElement(std::string_view name);
  void beginText() noexcept;
  void quotedCharacters(std::string_view text);
  void characters(std::string_view text, bool isQuoted);
  std::string_view joinedName(const xmlChar* prefix, const xmlChar* localName);

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

}  // namespace ORLFoundation::internal::xml
