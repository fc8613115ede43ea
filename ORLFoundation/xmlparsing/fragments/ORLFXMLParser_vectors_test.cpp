#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserIgnoreFragmentHandler.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::textOrNil;

class TracingHandler final : public ORLFXMLParserContentHandler {
 public:
  TracingHandler(std::string name, Json form, std::shared_ptr<Json> trace)
      : element(std::move(name)), form_(std::move(form)), trace_(std::move(trace)) {
    setIncludeUnhandledSubElementContent(form_.value("unhandled", false));
  }
  const std::string element;

  std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view name) override {
    const Json claims = form_.value("claims", Json::object());
    const auto found = claims.find(std::string(name));
    if (found == claims.end()) return nullptr;
    return std::make_shared<TracingHandler>(std::string(name), *found, trace_);
  }
  void beginFragmentWithParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
                               const std::shared_ptr<ORLFXMLParser>& parser) override {
    const auto* above = dynamic_cast<const TracingHandler*>(parent.get());
    trace_->push_back({"begin", element, above == nullptr ? Json() : Json(above->element)});
    ORLFXMLParserContentHandler::beginFragmentWithParent(parent, parser);
  }
  void endFragment() override {
    trace_->push_back({"endFragment", element});
    ORLFXMLParserContentHandler::endFragment();
  }
  Error willStartSubElement(std::string_view name) override {
    auto error = ORLFXMLParserContentHandler::willStartSubElement(name);
    return error ? error : failureOf("willStartSubElement");
  }
  Error didFinishSubElement(std::string_view name) override {
    auto error = ORLFXMLParserContentHandler::didFinishSubElement(name);
    return error ? error : failureOf("didFinishSubElement");
  }
  Error startElement(std::string_view name,
                     const std::shared_ptr<NSDictionary>& attributes) override {
    Json named = Json::object();
    for (const auto& [key, value] : attributes->entries())
      named[key.description()] = value.description();
    trace_->push_back({"start", std::string(name), named});
    return failureOf("startElement");
  }
  Error endElement(std::string_view name) override {
    auto error = ORLFXMLParserContentHandler::endElement(name);
    return error ? error : failureOf("endElement");
  }
  Error foundCharacters(std::string_view text) override {
    auto error = ORLFXMLParserContentHandler::foundCharacters(text);
    return error ? error : failureOf("foundCharacters");
  }
  void unhandledSubElementFoundCharacters(std::string_view name, std::string_view text) override {
    trace_->push_back({"unhandled", element, std::string(name), std::string(text)});
    ORLFXMLParserContentHandler::unhandledSubElementFoundCharacters(name, text);
  }
  bool checkpointContent(std::string_view content, std::string_view forSubElement) override {
    trace_->push_back({"checkpoint", element, std::string(forSubElement), std::string(content)});
    return form_.value("checkpoint", true);
  }
  bool finalizeContent(std::string_view content, std::string_view /*forElement*/) override {
    trace_->push_back({"finalize", element, std::string(content)});
    return form_.value("finalize", true);
  }

 private:
  [[nodiscard]] Error failureOf(const char* operation) const {
    const Json failures = form_.value("fail", Json::object());
    const auto found = failures.find(operation);
    return found == failures.end() ? nullptr
                                   : NSError::errorWithDomain("test", found->get<NSInteger>());
  }

  const Json form_;
  const std::shared_ptr<Json> trace_;
};

class TracingParser final : public ORLFXMLParser {
 public:
  explicit TracingParser(Json handlers) : handlers_(std::move(handlers)) {}
  const std::shared_ptr<Json> trace = std::make_shared<Json>(Json::array());

  Handler fragmentHandlerForElementName(std::string_view name) override {
    const auto found = handlers_.find(std::string(name));
    if (found == handlers_.end()) return nullptr;
    return std::make_shared<TracingHandler>(std::string(name), *found, trace);
  }
  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override {
    tellText(parser);
    ORLFXMLParser::parserDidStartElement(parser, tag);
  }
  void parserDidEndElement(NSXMLParser& parser, std::string_view name,
                           std::optional<std::string_view> space,
                           std::optional<std::string_view> qualified) override {
    tellText(parser);
    ORLFXMLParser::parserDidEndElement(parser, name, space, qualified);
  }
  void parserFoundCharacters(NSXMLParser& /*parser*/, std::string_view text) override {
    text_ += text;
  }

 private:
  /// Texts are told as one, when a tag follows.
  void tellText(NSXMLParser& parser) {
    const std::string text = std::exchange(text_, {});
    if (!text.empty()) ORLFXMLParser::parserFoundCharacters(parser, text);
  }

  std::string text_;
  const Json handlers_;
};

Json errorOf(const ORLFXMLParser& parser) {
  const auto error = parser.parserError();
  if (!error) return nullptr;
  const bool isOfDocument = error->domain() == NSXMLParserErrorDomain && error->code() != 86;
  return isOfDocument ? Json("not well-formed") : Json(error->code());
}

Json stackOf(const ORLFXMLParser& parser) {
  Json names = Json::array();
  for (const auto& handler : parser.fragmentHandlerStack()) {
    const auto* tracing = dynamic_cast<const TracingHandler*>(handler.get());
    names.push_back(tracing == nullptr ? "ignore" : tracing->element);
  }
  return names;
}

std::string fragments(const Json& in, const Json& out) {
  const LogCapture log;
  const auto parser = std::make_shared<TracingParser>(in.at("handlers"));
  parser->setUnhandledElementBehavior(in.at("unhandledElementBehavior").get<std::int32_t>());
  std::shared_ptr<const NSError> error;
  const bool isParsed =
      parser->parseData(NSData(std::string_view(in.at("xml").get<std::string>())), &error);
  const Json got = {{"ok", isParsed},
                    {"error", errorOf(*parser)},
                    {"stack", stackOf(*parser)},
                    {"trace", *parser->trace}};
  if (error != parser->parserError()) return "the slot holds another error";
  return orlftest::disagreement(out.dump(), got.dump());
}

TEST(ORLFXMLParser, AgreesWithVectorsOfFragments) {
  orlftest::runJsonVectors("xmlparsing_fragments", {{"fragments", fragments}});
}

template <class T>
std::string optionalDisagreement(const Json& out, const std::optional<T>& got) {
  return orlftest::disagreement(out.dump(), orlftest::jsonOrNull(got).dump());
}

TEST(ORLFXMLParser, AgreesWithVectorsOfAttributes) {
  orlftest::runJsonVectors(
      "xmlparsing_attributes",
      {{"boolValueForString",
        [](const Json& in, const Json& out) {
          return optionalDisagreement(out, ORLFXMLParser::boolValueForString(textOrNil(in)));
        }},
       {"integerValueForString", [](const Json& in, const Json& out) {
          return optionalDisagreement(out, ORLFXMLParser::integerValueForString(textOrNil(in)));
        }}});
}

}  // namespace
}  // namespace ORLFoundation
