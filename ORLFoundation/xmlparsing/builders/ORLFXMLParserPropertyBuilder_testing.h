/// A parser of objects with properties, for tests.
#pragma once

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserObjectBuilder.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// A target with one number under a key, and a refusal of all others.
class StrictTarget : public NSObject {
 public:
  [[nodiscard]] NSInteger limit() const { return limit_; }
  void setLimit(NSInteger limit) { limit_ = limit; }
  [[nodiscard]] std::vector<id> elements() const { return elements_; }
  void addElement(const id& element) { elements_.push_back(element); }
  [[nodiscard]] const id& lastElement() const { return elements_.back(); }
  [[nodiscard]] const NSKeyTable& keyTable() const override {
    static const NSKeyTable table(
        NSObject::keyTable(),
        {NSKey::readWrite<&StrictTarget::limit, &StrictTarget::setLimit>("limit"),
         NSKey::readWrite<&StrictTarget::lastElement, &StrictTarget::addElement>("element")});
    return table;
  }

 private:
  NSInteger limit_ = 0;
  std::vector<id> elements_;
};

/// Builds what a test gives.
class TestedObject : public ORLFXMLParserObjectBuilder {
 public:
  id made = std::make_shared<NSMutableDictionary>();
  bool isAccepted = true;
  std::vector<std::string> finalized;
  id makeBuiltObjectForElement(std::string_view, const std::shared_ptr<NSDictionary>&) override {
    return made;
  }
  bool finalizeBuiltObject(const id& object, std::string_view forElement) override {
    EXPECT_TRUE(object.isIdenticalTo(made));
    finalized.emplace_back(forElement);
    return isAccepted;
  }
};

/// `<o>` is an object of a test, `<p>` a property.
class TestedParser : public ORLFXMLParser {
 public:
  const std::shared_ptr<TestedObject> object = std::make_shared<TestedObject>();
  std::function<Handler()> makeProperty = [] {
    return std::make_shared<ORLFXMLParserPropertyBuilder>();
  };
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "o") return object;
    if (name == "p") return makeProperty();
    return nullptr;
  }
};

/// Properties of one object.
class Properties : public testing::Test {
 protected:
  const std::shared_ptr<TestedParser> parser_ = std::make_shared<TestedParser>();
  std::shared_ptr<const NSError> error_;
  LogCapture log_;

  bool parse(std::string_view inside) {
    error_ = nullptr;
    const std::string text = "<o>" + std::string(inside) + "</o>";
    return parser_->parseData(NSData(std::string_view(text)), &error_);
  }
  [[nodiscard]] id built(std::string_view key) const {
    return parser_->object->made.valueForKey(key);
  }
  /// Code 86 of the domain, without user information.
  [[nodiscard]] bool isRefused() const {
    return error_ && error_->domain() == NSXMLParserErrorDomain && error_->code() == 86 &&
           error_->userInfo()->count() == 0;
  }
};

}  // namespace ORLFoundation
