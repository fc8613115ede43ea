// Handlers that abort, throw, let go of the parser, or do its work themselves; memory of long
// streams.
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

/// One step of a handler, "start r" for example, after which it goes on as it would.
using Act = std::function<void(ORLFXMLParser&)>;

class ActingHandler final : public ORLFXMLParserContentHandler {
 public:
  ActingHandler(std::string step, Act act) : step_(std::move(step)), act_(std::move(act)) {}

  std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view name) override {
    reach("claim", name);
    return name == "x" ? nullptr : std::make_shared<ActingHandler>(step_, act_);
  }
  void beginFragmentWithParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
                               const std::shared_ptr<ORLFXMLParser>& parser) override {
    ORLFXMLParserContentHandler::beginFragmentWithParent(parent, parser);
    reach("begin", {});
  }
  void endFragment() override {
    reach("endFragment", {});
    ORLFXMLParserContentHandler::endFragment();
  }
  Error willStartSubElement(std::string_view name) override {
    reach("willStart", name);
    return ORLFXMLParserContentHandler::willStartSubElement(name);
  }
  Error didFinishSubElement(std::string_view name) override {
    reach("didFinish", name);
    return nullptr;
  }
  Error startElement(std::string_view name, const std::shared_ptr<NSDictionary>&) override {
    reach("start", name);
    return nullptr;
  }
  Error endElement(std::string_view name) override {
    reach("end", name);
    return ORLFXMLParserContentHandler::endElement(name);
  }
  Error foundCharacters(std::string_view text) override {
    reach("characters", text);
    return ORLFXMLParserContentHandler::foundCharacters(text);
  }
  Error foundIgnorableWhitespace(std::string_view) override {
    reach("whitespace", {});
    return nullptr;
  }
  void unhandledSubElementFoundCharacters(std::string_view, std::string_view text) override {
    reach("unhandled", text);
  }
  bool checkpointContent(std::string_view, std::string_view name) override {
    reach("checkpoint", name);
    return true;
  }
  bool finalizeContent(std::string_view, std::string_view name) override {
    reach("finalize", name);
    return true;
  }

 private:
  void reach(std::string_view operation, std::string_view about) {
    const std::string step = std::string(operation) + " " + std::string(about);
    if (step != step_) return;
    step_.clear();
    const auto running = parser();
    if (running) act_(*running);
  }

  std::string step_;
  Act act_;
};

class ActingParser final : public ORLFXMLParser {
 public:
  ActingParser(std::string step, Act act) : step_(std::move(step)), act_(std::move(act)) {
    setUnhandledElementBehavior(1);
  }
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "x") return nullptr;
    return std::make_shared<ActingHandler>(step_, act_);
  }

 private:
  std::string step_;
  Act act_;
};

constexpr std::string_view kActedDocument =
    "<!DOCTYPE r [<!ELEMENT r (b)>]><r> <b>1<c/></b><x>2</x></r>";
// Every operation that a parse of that document calls; "begin" and "endFragment" of the root.
const std::string kSteps[] = {"start r",      "whitespace ", "claim b",      "begin ",
                              "willStart b",  "start b",     "characters 1", "checkpoint c",
                              "start c",      "end c",       "finalize c",   "didFinish c",
                              "endFragment ", "end b",       "claim x",      "checkpoint x",
                              "unhandled 2",  "didFinish x", "finalize r",   "end r"};

class HostileHandlers : public orlftest::TemporaryFolderTest {
 protected:
  LogCapture log_;
};

TEST_F(HostileHandlers, AbortInEveryOperation) {
  for (const std::string& step : kSteps) {
    int acts = 0;
    const auto parser = std::make_shared<ActingParser>(step, [&](ORLFXMLParser& running) {
      ++acts;
      running.abortParsing();
    });
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(parser->parseData(NSData(kActedDocument), &error)) << step;
    EXPECT_GE(acts, 1) << step;
    ASSERT_NE(error, nullptr) << step;
    EXPECT_EQ(error->code(), NSXMLParserDelegateAbortedParseError) << step;
  }
}

TEST_F(HostileHandlers, ThrowInEveryOperation) {
  for (const std::string& step : kSteps) {
    const auto parser = std::make_shared<ActingParser>(
        step, [](ORLFXMLParser&) { throw std::domain_error("from a handler"); });
    EXPECT_THROW(parser->parseData(NSData(kActedDocument)), std::domain_error) << step;
    EXPECT_EQ(parser->parser(), nullptr) << step;
    EXPECT_EQ(parser->parserError(), nullptr) << step;
  }
}

TEST_F(HostileHandlers, LetGoOfTheParserInEveryOperation) {
  for (const std::string& step : kSteps) {
    std::shared_ptr<ORLFXMLParser> parser;
    auto events = std::make_shared<NSXMLParser>(NSData(kActedDocument));
    const std::weak_ptr<NSXMLParser> watched = events;
    std::weak_ptr<ORLFXMLParser> watchedParser;
    parser = std::make_shared<ActingParser>(step, [&](ORLFXMLParser&) {
      parser = nullptr;
      events = nullptr;
    });
    watchedParser = parser;
    EXPECT_TRUE(parser->parse(events)) << step;
    EXPECT_EQ(parser, nullptr) << step;
    EXPECT_TRUE(watched.expired()) << step;
    EXPECT_TRUE(watchedParser.expired()) << step;
  }
}

TEST_F(HostileHandlers, EmptyTheStackInEveryOperation) {
  for (const std::string& step : kSteps) {
    const auto parser = std::make_shared<ActingParser>(step, [](ORLFXMLParser& running) {
      while (const auto handler = running.popFragmentHandler()) handler->endFragment();
    });
    std::shared_ptr<const NSError> error;
    // What is left has nobody, and the parser takes what comes as if it stood at the top.
    EXPECT_TRUE(parser->parseData(NSData(kActedDocument), &error)) << step;
    EXPECT_EQ(error, nullptr) << step;
    EXPECT_TRUE(parser->fragmentHandlerStack().empty()) << step;
  }
}

TEST_F(HostileHandlers, ParseAnotherDocumentMeanwhile) {
  for (const std::string& step : kSteps) {
    bool isInnerParsed = false;
    bool isBrokenParsed = true;
    const auto parser = std::make_shared<ActingParser>(step, [&](ORLFXMLParser& running) {
      isInnerParsed = running.parseData(NSData(std::string_view("<x>3<y/></x>")));
      isBrokenParsed = running.parseData(NSData(std::string_view("<x>3<y/>")));
      EXPECT_NE(running.parserError(), nullptr) << step;
    });
    // The handlers that the broken one left take part in what comes: any end will do.
    static_cast<void>(parser->parseData(NSData(kActedDocument)));
    EXPECT_TRUE(isInnerParsed) << step;
    EXPECT_FALSE(isBrokenParsed) << step;
  }
}

TEST_F(HostileHandlers, ParseTheSameDocumentMeanwhile) {
  const auto events = std::make_shared<NSXMLParser>(NSData(kActedDocument));
  bool isInnerParsed = true;
  const auto parser = std::make_shared<ActingParser>(
      "start r", [&](ORLFXMLParser& running) { isInnerParsed = running.parse(events); });
  EXPECT_TRUE(parser->parse(events));
  EXPECT_FALSE(isInnerParsed);
}

TEST_F(HostileHandlers, MayChangeTheFileThatIsRead) {
  const std::string file = write("r.xml", std::string(kActedDocument) + std::string(100'000, ' '));
  const auto parser = std::make_shared<ActingParser>(
      "start r", [&](ORLFXMLParser&) { std::ofstream(file) << "<broken"; });
  EXPECT_TRUE(parser->parseContentsOfURL(NSURL::fileURLWithPath(file)));
}

/// A ledger of so many bytes or a little more, made while it is read.
class LongLedger final : public NSInputStream {
 public:
  explicit LongLedger(std::uint64_t length) : length_(length) {}
  std::uint64_t mostResident = 0;   // bytes of memory of the process, from a quarter on
  std::uint64_t firstResident = 0;  // at a quarter

  NSInteger read(std::span<std::uint8_t> buffer) override {
    if (rest_.empty()) refill();
    const std::size_t count = std::min(rest_.size(), buffer.size());
    std::ranges::copy(rest_.substr(0, count), buffer.begin());
    rest_.remove_prefix(count);
    return static_cast<NSInteger>(count);
  }

 private:
  void refill() {
    text_ = made_ == 0 ? "<r>" : "";
    while (made_ < length_ && text_.size() < 50'000)
      text_ += "<b id='" + std::to_string(number_++) + "' memo='Smith &amp; Sons'>12.50</b>\n";
    made_ += text_.size();
    if (made_ >= length_ && !std::exchange(isDone_, true)) text_ += "</r>";
    rest_ = text_;
    if (made_ >= length_ / 4) measure();
  }
  void measure() {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    const std::uint64_t resident = pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    if (firstResident == 0) firstResident = resident;
    mostResident = std::max(mostResident, resident);
  }

  const std::uint64_t length_;
  std::uint64_t made_ = 0;
  std::uint64_t number_ = 0;
  bool isDone_ = false;
  std::string text_;
  std::string_view rest_;
};

TEST_F(Fragments, MemoryStaysFlatOverALongStream) {
  root_->claims["b"] = inner_;
  root_->onWillStart = [&](std::string_view) {
    root_->setContent("");
    return nullptr;
  };
  const auto ledger = std::make_shared<LongLedger>(std::uint64_t{24} << 20);
  EXPECT_TRUE(parser_->parseStream(ledger, &error_));
  EXPECT_EQ(inner_->lastContent, "12.50");
  ASSERT_GT(ledger->firstResident, 0U);
  // A sanitizer holds on to memory that was given back.
  const std::uint64_t room = orlftest::kSlowdown > 1 ? std::uint64_t{400} << 20 : 2 << 20;
  EXPECT_LT(ledger->mostResident - ledger->firstResident, room);
}

}  // namespace
}  // namespace ORLFoundation
