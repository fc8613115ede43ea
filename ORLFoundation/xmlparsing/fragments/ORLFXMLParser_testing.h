/// A parser and its handlers whose answers a test gives.
#pragma once

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>
#include <tests/support/TemporaryFolder.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// Calls functions that a test gives, and claims the elements that it names.
class ScriptedHandler : public ORLFXMLParserContentHandler {
 public:
  std::map<std::string, std::shared_ptr<ORLFXMLParserFragmentHandler>, std::less<>> claims;
  std::function<Error(std::string_view)> onStart;
  std::function<Error(std::string_view)> onEnd;
  std::function<Error(std::string_view)> onWillStart;
  std::function<Error(std::string_view)> onDidFinish;
  std::function<Error(std::string_view)> onCharacters;
  std::function<Error(std::string_view)> onWhitespace;
  std::string lastContent;
  std::vector<std::string> unhandled;

  std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view name) override {
    const auto found = claims.find(name);
    return found == claims.end() ? nullptr : found->second;
  }
  Error startElement(std::string_view name, const std::shared_ptr<NSDictionary>&) override {
    return onStart ? onStart(name) : nullptr;
  }
  Error endElement(std::string_view name) override {
    if (auto error = ORLFXMLParserContentHandler::endElement(name)) return error;
    return onEnd ? onEnd(name) : nullptr;
  }
  Error willStartSubElement(std::string_view name) override {
    return onWillStart ? onWillStart(name) : nullptr;
  }
  Error didFinishSubElement(std::string_view name) override {
    return onDidFinish ? onDidFinish(name) : nullptr;
  }
  Error foundCharacters(std::string_view text) override {
    if (onCharacters) return onCharacters(text);
    return ORLFXMLParserContentHandler::foundCharacters(text);
  }
  Error foundIgnorableWhitespace(std::string_view text) override {
    if (onWhitespace) return onWhitespace(text);
    return ORLFXMLParserContentHandler::foundIgnorableWhitespace(text);
  }
  bool finalizeContent(std::string_view content, std::string_view) override {
    lastContent = content;
    return true;
  }
  void unhandledSubElementFoundCharacters(std::string_view name, std::string_view text) override {
    unhandled.push_back(std::string(name) + ":" + std::string(text));
    ORLFXMLParserContentHandler::unhandledSubElementFoundCharacters(name, text);
  }
};

class ScriptedParser : public ORLFXMLParser {
 public:
  std::map<std::string, Handler, std::less<>> handlers;
  std::vector<std::string> asked;
  int started = 0;
  int ended = 0;

  Handler fragmentHandlerForElementName(std::string_view name) override {
    asked.emplace_back(name);
    const auto found = handlers.find(name);
    return found == handlers.end() ? nullptr : found->second;
  }
  void didStartDocument() override { ++started; }
  void didEndDocument() override { ++ended; }
};

/// A parser whose root element `<r>` has a scripted handler.
class Fragments : public orlftest::TemporaryFolderTest {
 protected:
  const std::shared_ptr<ScriptedParser> parser_ = std::make_shared<ScriptedParser>();
  const std::shared_ptr<ScriptedHandler> root_ = std::make_shared<ScriptedHandler>();
  const std::shared_ptr<ScriptedHandler> inner_ = std::make_shared<ScriptedHandler>();
  std::shared_ptr<const NSError> error_;
  LogCapture log_;

  Fragments() { parser_->handlers["r"] = root_; }
  bool parse(std::string_view text) { return parser_->parseData(NSData(text), &error_); }
  [[nodiscard]] NSInteger code() const { return error_ ? error_->code() : 0; }
};

}  // namespace ORLFoundation
