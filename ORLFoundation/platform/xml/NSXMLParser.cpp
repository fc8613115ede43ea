#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParserLoader.h>
#include <ORLFoundation/platform/xml/internal/InstalledLoader.h>
#include <ORLFoundation/platform/xml/internal/PushParser.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace ORLFoundation {

using internal::xml::EventSink;
using internal::xml::Fault;
using internal::xml::PushParser;

namespace {

/// What is read from a stream before it is parsed: a stream that gives a byte at a time costs no
/// more than another.
constexpr std::size_t kBytesAtATime = 32'768;

/// Hands events on to a delegate, if there is one.
class Forwarder final : public EventSink {
 public:
  Forwarder(NSXMLParser& parser, NSXMLParserDelegate* delegate)
      : parser_(parser), delegate_(delegate) {}

  void startDocument() override {
    if (delegate_ != nullptr) delegate_->parserDidStartDocument(parser_);
  }
  void startElement(std::string_view name,
                    const std::shared_ptr<NSDictionary>& attributes) override {
    if (delegate_ != nullptr)
      delegate_->parserDidStartElement(parser_, {name, std::nullopt, std::nullopt, attributes});
  }
  void endElement(std::string_view name) override {
    if (delegate_ != nullptr)
      delegate_->parserDidEndElement(parser_, name, std::nullopt, std::nullopt);
  }
  void characters(std::string_view text) override {
    if (delegate_ != nullptr) delegate_->parserFoundCharacters(parser_, text);
  }
  void ignorableWhitespace(std::string_view text) override {
    if (delegate_ != nullptr) delegate_->parserFoundIgnorableWhitespace(parser_, text);
  }

 private:
  NSXMLParser& parser_;
  NSXMLParserDelegate* delegate_;
};

/// Runs a step when a scope is left, by an exception too.
template <class Step>
class AtExit {
 public:
  explicit AtExit(Step step) : step_(std::move(step)) {}
  ~AtExit() { step_(); }
  AtExit(const AtExit&) = delete;
  AtExit& operator=(const AtExit&) = delete;

 private:
  Step step_;
};

std::shared_ptr<const NSError> loadFailure(const NSURL& url) {
  return NSError::errorWithDomain(
      NSURLErrorDomain, -1002,
      NSDictionary::dictionaryWithEntries(
          {{NSLocalizedDescriptionKey, "No loader is installed for " + url.absoluteString() + "."},
           {NSURLErrorKey, url}}));
}

}  // namespace

NSXMLParser::NSXMLParser(NSData data)
    : source_(std::move(data)), limits_(NSXMLParserCurrentLimits()) {}
NSXMLParser::NSXMLParser(std::shared_ptr<NSInputStream> stream)
    : source_(std::move(stream)), limits_(NSXMLParserCurrentLimits()) {}
NSXMLParser::NSXMLParser(NSURL contentsOfURL)
    : source_(std::move(contentsOfURL)), limits_(NSXMLParserCurrentLimits()) {}
NSXMLParser::~NSXMLParser() = default;

bool NSXMLParser::parse() {
  if (running_ != nullptr) return false;
  const auto receiver = weak_from_this().lock();  // a delegate may let go of the last owner
  error_ = nullptr;
  const auto delegate = delegate_.lock();
  Forwarder events(*this, delegate.get());
  PushParser parser(events, limits_);
  running_ = &parser;
  const AtExit leave([this] {
    lastPlace_ = place();
    running_ = nullptr;
  });
  readSource(parser);
  if (error_ == nullptr && parser.finish() && delegate) delegate->parserDidEndDocument(*this);
  if (error_ == nullptr && parser.fault()) error_ = errorOf(*parser.fault());
  if (error_ == nullptr) return true;
  if (delegate) delegate->parserParseErrorOccurred(*this, error_);
  return false;
}

void NSXMLParser::abortParsing() {
  if (running_ != nullptr)
    running_->stop(NSXMLParserDelegateAbortedParseError, "The parse was aborted.");
}

NSXMLParser::Place NSXMLParser::place() const {
  return running_ == nullptr ? lastPlace_ : Place{running_->line(), running_->column()};
}
NSInteger NSXMLParser::lineNumber() const { return place().line; }
NSInteger NSXMLParser::columnNumber() const { return place().column; }

NSXMLParser::Place NSXMLParser::startTagPlace() const {
  if (running_ == nullptr) return lastPlace_;
  const internal::xml::TagPlace tag = running_->startTag();
  return {tag.line, tag.column};
}
NSInteger NSXMLParser::startTagLineNumber() const { return startTagPlace().line; }
NSInteger NSXMLParser::startTagColumnNumber() const { return startTagPlace().column; }

void NSXMLParser::readSource(PushParser& parser) {
  if (const auto* data = std::get_if<NSData>(&source_)) {
    static_cast<void>(parser.push(data->bytes()));
  } else if (const auto* url = std::get_if<NSURL>(&source_)) {
    readAddress(*url, parser);
  } else if (const auto stream = std::get<std::shared_ptr<NSInputStream>>(source_)) {
    readStream(*stream, parser);
  }
}

void NSXMLParser::readAddress(const NSURL& url, PushParser& parser) {
  std::shared_ptr<NSInputStream> stream;
  if (url.isFileURL()) {
    stream = NSInputStream::initWithFileAtPath(url.path());
  } else if (const auto loader = internal::xml::installedLoader()) {
    stream = (*loader)(url, &error_);
    if (stream != nullptr) error_ = nullptr;
  }
  if (stream != nullptr)
    readStream(*stream, parser);
  else if (error_ == nullptr)
    error_ = loadFailure(url);
}

void NSXMLParser::readStream(NSInputStream& stream, PushParser& parser) {
  const bool isOurs = stream.streamStatus() == NSStreamStatusNotOpen;
  if (isOurs) stream.open();
  const AtExit close([&] {
    if (isOurs) stream.close();
  });
  std::array<std::uint8_t, kBytesAtATime> bytes{};
  for (bool isMore = true; isMore;) {
    std::size_t filled = 0;
    while (isMore && filled < bytes.size()) {
      const bool hasFailed = stream.streamStatus() == NSStreamStatusError;
      const auto room = std::span(bytes).subspan(filled);
      const NSInteger taken = hasFailed ? -1 : stream.read(room);
      if (taken < 0 || static_cast<std::size_t>(taken) > room.size()) {
        error_ = stream.streamError();
        if (error_ == nullptr) error_ = NSError::errorWithDomain(NSPOSIXErrorDomain, EIO);
        return;
      }
      filled += static_cast<std::size_t>(taken);
      isMore = taken > 0;
    }
    isMore = parser.push(std::span(bytes).first(filled)) && isMore;
  }
}

std::shared_ptr<const NSError> NSXMLParser::errorOf(const Fault& fault) const {
  const std::string place =
      "line " + std::to_string(fault.line) + ", column " + std::to_string(fault.column) + ": ";
  return NSError::errorWithDomain(NSXMLParserErrorDomain, fault.code,
                                  NSDictionary::dictionaryWithEntries({
                                      {NSLocalizedDescriptionKey, place + fault.message},
                                      {NSXMLParserErrorLineNumberKey, fault.line},
                                      {NSXMLParserErrorColumnKey, fault.column},
                                      {NSXMLParserErrorMessageKey, fault.message},
                                  }));
}

}  // namespace ORLFoundation
