/// Writes down what a parser tells, for tests: a line for each event, pieces of one text joined.
///
///     EXPECT_EQ(eventsOf("<a x='1'>b</a>"),
///               (Lines{"start", "<a x=1>", "text b", "</a>", "end"}));
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

using Lines = std::vector<std::string>;

class XMLEventLines : public NSXMLParserDelegate {
 public:
  Lines lines;

  void parserDidStartDocument(NSXMLParser& /*parser*/) override { add("start"); }
  void parserDidEndDocument(NSXMLParser& /*parser*/) override { add("end"); }
  void parserDidStartElement(NSXMLParser& /*parser*/, const NSXMLStartTag& tag) override {
    std::string line = "<" + std::string(tag.didStartElement);
    for (const auto& [name, value] : tag.attributes->entries())
      line += " " + name.description() + "=" + value.description();
    add(line + ">");
    if (tag.namespaceURI || tag.qualifiedName) add("a namespace");
  }
  void parserDidEndElement(NSXMLParser& /*parser*/, std::string_view didEndElement,
                           std::optional<std::string_view> namespaceURI,
                           std::optional<std::string_view> qualifiedName) override {
    add("</" + std::string(didEndElement) + ">");
    if (namespaceURI || qualifiedName) add("a namespace");
  }
  void parserFoundCharacters(NSXMLParser& /*parser*/, std::string_view foundCharacters) override {
    addText("text ", foundCharacters);
  }
  void parserFoundIgnorableWhitespace(NSXMLParser& /*parser*/,
                                      std::string_view foundIgnorableWhitespace) override {
    addText("blanks ", foundIgnorableWhitespace);
  }
  void parserParseErrorOccurred(NSXMLParser& /*parser*/,
                                const std::shared_ptr<const NSError>& error) override {
    add("error " + std::to_string(error->code()));
  }

 protected:
  void add(std::string line) {
    lines.push_back(std::move(line));
    kind_ = {};
  }
  void addText(std::string_view kind, std::string_view text) {
    if (kind_ != kind) add(std::string(kind));
    kind_ = kind;
    lines.back() += text;
  }

 private:
  std::string_view kind_;  // of the text in the last line
};

/// All events of a parse by a parser that is ready.
inline Lines eventsOf(NSXMLParser& parser) {
  const auto events = std::make_shared<XMLEventLines>();
  parser.setDelegate(events);
  const bool isWhole = parser.parse();
  events->lines.emplace_back(isWhole ? "true" : "false");
  return events->lines;
}
inline Lines eventsOf(std::string_view document) {
  NSXMLParser parser((NSData(document)));
  return eventsOf(parser);
}

/// A text over and over.
inline std::string times(std::string_view text, std::size_t count) {
  std::string all;
  all.reserve(text.size() * count);
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

/// The code of a document's error under some limits; 0 for none.
inline NSInteger codeUnder(const NSXMLParserLimits& limits, std::string_view document) {
  NSXMLParser parser((NSData(document)));
  parser.setLimits(limits);
  return parser.parse() ? 0 : parser.parserError()->code();
}

/// "26 at 3:7" for the error of a document, "" for none.
inline std::string errorOf(const std::shared_ptr<const NSError>& error) {
  if (error == nullptr) return {};
  const auto number = [&](std::string_view key) {
    return std::to_string(error->userInfo()->objectForKey(key).as<NSInteger>().value_or(-1));
  };
  return std::to_string(error->code()) + " at " + number(NSXMLParserErrorLineNumberKey) + ":" +
         number(NSXMLParserErrorColumnKey);
}
inline std::string errorOf(std::string_view document) {
  NSXMLParser parser((NSData(document)));
  static_cast<void>(eventsOf(parser));
  return errorOf(parser.parserError());
}

}  // namespace ORLFoundation
