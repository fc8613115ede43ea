#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/NSXMLParserLoader.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::shared_ptr<const NSError> failure(NSInteger code) {
  return NSError::errorWithDomain("test", code);
}

TEST_F(Fragments, TellBothEndsOfADocument) {
  EXPECT_TRUE(parse("<r/>"));
  EXPECT_EQ(parser_->started, 1);
  EXPECT_EQ(parser_->ended, 1);
  EXPECT_FALSE(parse("<r>"));
  EXPECT_EQ(parser_->started, 1) << "less than four bytes";
  EXPECT_EQ(parser_->ended, 1);
}

TEST_F(Fragments, AskTheHandlerBeforeTheParser) {
  root_->claims["b"] = inner_;
  EXPECT_TRUE(parse("<r><b/></r>"));
  EXPECT_THAT(parser_->asked, ElementsAre("r"));
  parser_->handlers["c"] = inner_;
  EXPECT_TRUE(parse("<r><c/></r>"));
  EXPECT_THAT(parser_->asked, ElementsAre("r", "r", "c"));
}

TEST_F(Fragments, StopAtAnErrorOfEveryOperation) {
  using Hook = std::function<std::shared_ptr<const NSError>(std::string_view)> ScriptedHandler::*;
  struct Row {
    const char* name;
    Hook hook;
    std::size_t stack;
  };
  const Row rows[] = {{"start", &ScriptedHandler::onStart, 1},
                      {"characters", &ScriptedHandler::onCharacters, 1},
                      {"whitespace", &ScriptedHandler::onWhitespace, 1},
                      {"willStart", &ScriptedHandler::onWillStart, 2},
                      {"didFinish", &ScriptedHandler::onDidFinish, 2},
                      {"end", &ScriptedHandler::onEnd, 1}};
  constexpr std::string_view document = "<!DOCTYPE r [<!ELEMENT r (b)>]><r> 1<b>2</b></r>";
  for (const Row& row : rows) {
    const auto parser = std::make_shared<ScriptedParser>();
    const auto root = std::make_shared<ScriptedHandler>();
    root->claims["b"] = std::make_shared<ScriptedHandler>();
    parser->handlers["r"] = root;
    (*root).*row.hook = [](std::string_view) { return failure(7); };
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(parser->parseData(NSData(document), &error)) << row.name;
    ASSERT_NE(error, nullptr) << row.name;
    EXPECT_EQ(error->domain(), "test") << row.name;
    EXPECT_EQ(error->code(), 7) << row.name;
    EXPECT_EQ(parser->parserError(), error) << row.name;
    EXPECT_EQ(parser->fragmentHandlerStack().size(), row.stack) << row.name;
    EXPECT_EQ(parser->ended, 0) << row.name;
    EXPECT_NE(root->content(), std::nullopt) << row.name << ": endFragment is not called";
  }
}

TEST_F(Fragments, KeepTheFirstError) {
  root_->onStart = [&](std::string_view) {
    parser_->fragementErrorOccurred(nullptr);
    EXPECT_EQ(parser_->parserError(), nullptr);
    parser_->fragementErrorOccurred(failure(1));
    return failure(2);
  };
  EXPECT_FALSE(parse("<r><broken"));
  EXPECT_EQ(code(), 1);
  EXPECT_EQ(log_.lines().size(), 1U);
}

TEST_F(Fragments, TellErrorsOfTheDocument) {
  EXPECT_FALSE(parse("<r></x>"));
  EXPECT_EQ(error_->domain(), NSXMLParserErrorDomain);
  EXPECT_EQ(code(), 76);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("parseErrorOccurred: Error Domain=")));
  EXPECT_FALSE(parser_->parseData(NSData(std::string_view("<r></x>"))))
      << "a slot need not be given";
}

TEST_F(Fragments, AreReusedAfterAFailureWithTheirStack) {
  root_->claims["b"] = inner_;
  EXPECT_FALSE(parse("<r><b></r>"));
  EXPECT_EQ(parser_->fragmentHandlerStack().size(), 2U);
  // The handlers of the first parse stay below: they are asked first.
  const auto second = std::make_shared<ScriptedHandler>();
  inner_->claims["r"] = second;
  error_ = nullptr;
  EXPECT_TRUE(parse("<r>x</r>"));
  EXPECT_EQ(error_, nullptr);
  EXPECT_EQ(parser_->parserError(), nullptr);
  EXPECT_EQ(second->lastContent, "x");
  EXPECT_EQ(parser_->fragmentHandlerStack().size(), 2U);
  EXPECT_EQ(parser_->popFragmentHandler(), inner_);
  EXPECT_EQ(parser_->popFragmentHandler(), root_);
  EXPECT_EQ(parser_->popFragmentHandler(), nullptr);
  EXPECT_TRUE(parse("<r/>"));
}

TEST_F(Fragments, AbortFromAHandler) {
  root_->onStart = [&](std::string_view) {
    EXPECT_NE(parser_->parser(), nullptr);
    parser_->abortParsing();
    return nullptr;
  };
  EXPECT_FALSE(parse("<r>x</r>"));
  EXPECT_EQ(code(), NSXMLParserDelegateAbortedParseError);
  EXPECT_EQ(parser_->parser(), nullptr);
  parser_->abortParsing();
}

TEST_F(Fragments, ThrowAgainWhatAHandlerThrows) {
  root_->onStart = [](std::string_view) -> std::shared_ptr<const NSError> {
    throw std::domain_error("from the handler");
  };
  EXPECT_THROW(parse("<r>x</r>"), std::domain_error);
  EXPECT_EQ(parser_->parser(), nullptr);
  EXPECT_EQ(parser_->fragmentHandlerStack().size(), 1U);
}

TEST_F(Fragments, HandlersKnowTheirPlaceWhileTheyHaveAnElement) {
  root_->claims["b"] = inner_;
  inner_->onStart = [&](std::string_view) {
    EXPECT_EQ(inner_->parent(), root_);
    EXPECT_EQ(inner_->parser(), parser_);
    EXPECT_EQ(root_->parent(), nullptr);
    EXPECT_EQ(inner_->content(), "");
    EXPECT_EQ(inner_->valueForKey("parent").object(), root_);
    EXPECT_EQ(inner_->valueForKey("parser").object(), parser_);
    EXPECT_EQ(inner_->valueForKey("content"), id(""));
    EXPECT_TRUE(inner_->parentObject().isNil());
    return nullptr;
  };
  EXPECT_TRUE(parse("<r><b>x</b></r>"));
  EXPECT_EQ(inner_->lastContent, "x");
  EXPECT_EQ(inner_->parent(), nullptr);
  EXPECT_EQ(inner_->parser(), nullptr);
  EXPECT_EQ(inner_->content(), std::nullopt);
}

TEST_F(Fragments, StackFindsHandlersByPlace) {
  const auto other = std::make_shared<ScriptedHandler>();
  EXPECT_EQ(parser_->currentFragmentHandler(), nullptr);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(root_), nullptr);
  parser_->pushFragmentHandler(nullptr);
  EXPECT_TRUE(parser_->fragmentHandlerStack().empty());
  parser_->pushFragmentHandler(root_);
  parser_->pushFragmentHandler(inner_);
  EXPECT_EQ(parser_->currentFragmentHandler(), inner_);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(root_), nullptr);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(inner_), root_);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(other), inner_);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(nullptr), inner_);
  parser_->pushFragmentHandler(root_);
  EXPECT_EQ(parser_->parentFragmentHandlerForHandler(root_), nullptr) << "the first place counts";
}

TEST_F(Fragments, AreReadFromFilesStreamsAndAddresses) {
  const std::string file = write("r.xml", "<r>x</r>");
  EXPECT_TRUE(parser_->parseContentsOfURL(NSURL::fileURLWithPath(file), &error_));
  EXPECT_EQ(root_->lastContent, "x");
  EXPECT_FALSE(parser_->parseContentsOfURL(NSURL::fileURLWithPath(path("absent")), &error_));
  EXPECT_EQ(code(), ENOENT);
  EXPECT_TRUE(parser_->parseStream(NSInputStream::initWithFileAtPath(file), &error_));
  EXPECT_FALSE(parser_->parseStream(nullptr, &error_));
  EXPECT_EQ(code(), NSXMLParserEmptyDocumentError);
  EXPECT_FALSE(parser_->parse(nullptr, &error_));
  EXPECT_EQ(error_, nullptr) << "no parser, no error";

  const NSURL url = *NSURL::URLWithString("https://example.com/r.xml");
  EXPECT_FALSE(parser_->parseContentsOfURL(url, &error_));
  EXPECT_EQ(error_->domain(), NSURLErrorDomain);
  const Replaced loader(
      NSSetXMLParserLoader, NSXMLParserLoader([](const NSURL&, NSErrorSlot) {
        return NSInputStream::initWithData(NSData(std::string_view("<r>loaded</r>")));
      }));
  EXPECT_TRUE(parser_->parseContentsOfURL(url, &error_));
  EXPECT_EQ(root_->lastContent, "loaded");
}

TEST_F(Fragments, TakeAReadyParser) {
  const auto ready = std::make_shared<NSXMLParser>(NSData(std::string_view("<r><b/></r>")));
  root_->claims["b"] = inner_;
  ready->setLimits({.elementDepth = 1});
  EXPECT_FALSE(parser_->parse(ready, &error_));
  EXPECT_EQ(code(), NSXMLParserInternalError);
  EXPECT_EQ(ready->delegate(), std::static_pointer_cast<NSXMLParserDelegate>(
                                   std::static_pointer_cast<ORLFXMLParser>(parser_)));
}

TEST(ORLFXMLParserAttributes, AreReadUnderOneLocale) {
  const auto attributes = NSDictionary::dictionaryWithEntries({{"s", "text"},
                                                               {"yes", "yEs"},
                                                               {"no", "no"},
                                                               {"i", " -12abc"},
                                                               {"r", "1.5e2x"},
                                                               {"d", "1234.56"},
                                                               {"comma", "1,5"},
                                                               {"word", "word"},
                                                               {"op", "doIt:with:"},
                                                               {"n", 5}});
  using P = ORLFXMLParser;
  EXPECT_EQ(P::stringValueNamed("s", attributes), "text");
  EXPECT_EQ(P::stringValueNamed("absent", attributes), std::nullopt);
  EXPECT_EQ(P::stringValueNamed("s", nullptr), std::nullopt);
  EXPECT_EQ(P::stringValueNamed("n", attributes), std::nullopt) << "no text";
  EXPECT_EQ(P::boolValueNamed("yes", attributes), true);
  EXPECT_EQ(P::boolValueNamed("no", attributes), false);
  EXPECT_EQ(P::boolValueNamed("s", attributes), std::nullopt);
  EXPECT_EQ(P::boolValueNamed("absent", attributes), std::nullopt);
  EXPECT_EQ(P::integerValueNamed("i", attributes), -12);
  EXPECT_EQ(P::integerValueNamed("s", attributes), 0);
  EXPECT_EQ(P::integerValueNamed("absent", attributes), std::nullopt);
  EXPECT_EQ(P::realValueNamed("r", attributes), 150.0);
  EXPECT_EQ(P::realValueNamed("s", attributes), 0.0);
  EXPECT_EQ(P::realValueNamed("comma", attributes), 1.0);
  EXPECT_EQ(P::realValueNamed("absent", attributes), std::nullopt);
  EXPECT_EQ(P::decimalValueNamed("d", attributes), NSDecimalNumber("1234.56"));
  EXPECT_EQ(P::decimalValueNamed("word", attributes), NSDecimalNumber::notANumber());
  EXPECT_EQ(P::decimalValueNamed("absent", attributes), std::nullopt);
  EXPECT_EQ(P::decimalValueForString(std::nullopt), std::nullopt);
  EXPECT_EQ(P::selectorValueNamed("op", attributes), "doIt:with:");
  EXPECT_EQ(P::selectorValueNamed("absent", attributes), std::nullopt);
  EXPECT_EQ(P::USLocal()->localeIdentifier(), "en_US");
  EXPECT_EQ(P::USLocal(), P::USLocal());

  const Replaced german(&NSLocale::setCurrentLocale,
                        std::shared_ptr<NSLocale>(std::make_shared<NSLocale>("de_DE")));
  EXPECT_EQ(P::decimalValueNamed("d", attributes), NSDecimalNumber("1234.56"));
  EXPECT_EQ(P::decimalValueNamed("comma", attributes), NSDecimalNumber::notANumber());
  EXPECT_EQ(P::realValueNamed("r", attributes), 150.0);
}

struct NumberCase {
  std::string_view text;
  long long integer;
  double real;
  const char* decimal;  // null for not-a-number
};

TEST(ORLFXMLParserAttributes, OfWildTextsAreNumbersTillTheyAreNone) {
  const double infinity = std::numeric_limits<double>::infinity();
  const NumberCase rows[] = {
      {"", 0, 0, nullptr},
      {" ", 0, 0, nullptr},
      {"-", 0, 0, nullptr},
      {".5", 0, 0.5, "0.5"},
      {"-7.25", -7, -7.25, "-7.25"},
      {"+8", 8, 8, "8"},
      {" \t9 ", 9, 9, nullptr},
      {"1e3", 1, 1000, "1000"},
      {"1e999", 1, infinity, nullptr},
      {"0x10", 0, 0, nullptr},
      {"inf", 0, 0, nullptr},
      {"nan", 0, 0, nullptr},
      {"1,234.5", 1, 1, nullptr},
      {"99999999999999999999", std::numeric_limits<long long>::max(), 1e20, "99999999999999999999"},
      {"-99999999999999999999", std::numeric_limits<long long>::min(), -1e20,
       "-99999999999999999999"},
      {"\u0663", 0, 0, nullptr},
      {"12345678901234567890123456789012345678.4", std::numeric_limits<long long>::max(),
       1.2345678901234568e37, "12345678901234567890123456789012345678"},
  };
  using P = ORLFXMLParser;
  for (const NumberCase& row : rows) {
    const auto attributes = NSDictionary::dictionaryWithEntries({{"a", row.text}});
    EXPECT_EQ(P::integerValueNamed("a", attributes), row.integer) << row.text;
    EXPECT_EQ(P::realValueNamed("a", attributes), row.real) << row.text;
    const auto decimal = P::decimalValueNamed("a", attributes);
    ASSERT_NE(decimal, std::nullopt) << row.text;
    EXPECT_EQ(decimal->description(), row.decimal ? row.decimal : "NaN") << row.text;
    EXPECT_EQ(P::decimalValueForString(std::string(row.text)), decimal) << row.text;
    EXPECT_EQ(P::selectorValueNamed("a", attributes), row.text);
  }
}

}  // namespace
}  // namespace ORLFoundation
