#include <ORLFoundation/platform/xml/internal/PushSession.h>

#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/internal/QuietThread.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::xml {
namespace {

constexpr std::string_view kStartOfDeclarations = "<!DOCTYPE";
/// What libxml2 is given at a time.
constexpr std::size_t kPiece = 32'768;
/// With each piece libxml2 looks through all of a tag or a declaration that has not come to its
/// end. The next piece of such a one is at least this part of it, so that few are needed.
constexpr std::size_t kLeastPartOfUnfinished = 8;

bool areZeros(std::span<const std::uint8_t> bytes) noexcept {
  return std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

PushParser::Session::Session(EventSink& sink, const NSXMLParserLimits& limits)
    : sink_(sink),
      limits_(limits),
      expansion_(limits.entityExpansion),
      context_(makePushContext(handlers(), this, limits)) {}

bool PushParser::Session::push(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty() && !isOver_) {
    const auto piece = bytes.first(std::min(bytes.size(), kPiece));
    feed(pieces_.completed(piece, unfinished().size() / kLeastPartOfUnfinished), false);
    bytes = bytes.subspan(piece.size());
    if (!isOver_) boundUnfinishedMarkup();
  }
  if (isBehindDocument_ && !areZeros(bytes)) stopBehindDocument();
  return isBehindDocument_ ? !fault_ : !isOver_;
}

bool PushParser::Session::finish() {
  if (isBehindDocument_ && !areZeros(pieces_.kept())) stopBehindDocument();
  if (!isOver_) feed(pieces_.kept(), false);
  if (!isOver_) feed({}, true);
  return !fault_;
}

void PushParser::Session::stop(NSInteger code, std::string_view message) {
  if (fault_ || (isOver_ && !isBehindDocument_)) return;
  end();
  fault_ = Fault{code, line_, column_, std::string(message)};
}

TagPlace PushParser::Session::startTag() const noexcept {
  if (isOver_) return {line_, column_};
  const xmlParserInput& input = documentInput();
  return beginningOfTag(viewOf(input.base, input.cur), input.consumed == 0,
                        {input.line, input.col});
}

/// The document's own, though a parameter entity is being read.
const xmlParserInput& PushParser::Session::documentInput() const noexcept {
  return *(context_->inputNr > 0 ? context_->inputTab[0] : context_->input);
}

/// The place must be read before: libxml2 may go on for a while.
void PushParser::Session::end() noexcept {
  line_ = line();
  column_ = column();
  isOver_ = true;
  context_->disableSAX = 1;
  if (context_->errNo == XML_ERR_OK) context_->errNo = XML_ERR_USER_STOP;  // else it goes on
}

void PushParser::Session::feed(std::span<const std::uint8_t> bytes, bool isLast) {
  if (bytes.empty() && !isLast) return;
  {
    const QuietThread quiet;
    xmlParseChunk(context_.get(), reinterpret_cast<const char*>(bytes.data()),
                  static_cast<int>(bytes.size()), isLast ? 1 : 0);
  }
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
  if (!isOver_ && isLast && context_->wellFormed == 0)
    stop(context_->errNo, "The document is not well-formed.");
  // Bytes that cannot be converted halt the parser, or stay behind, without a fault.
  if (!isOver_ && (context_->disableSAX != 0 || (isLast && !areZeros(unconverted()))))
    stop(NSXMLParserInvalidEncodingError, "The bytes do not fit the document's encoding.");
}

/// What libxml2 has taken of the document and not made characters of.
std::span<const std::uint8_t> PushParser::Session::unconverted() const noexcept {
  const xmlParserInputBuffer* const buffer = documentInput().buf;
  if (buffer == nullptr || buffer->raw == nullptr) return {};
  return {xmlBufContent(buffer->raw), xmlBufUse(buffer->raw)};
}

/// What has come of a tag, a text or a declaration that goes on in the next piece.
void PushParser::Session::boundUnfinishedMarkup() {
  const std::string_view markup = unfinished();
  const bool isTag = context_->instate == XML_PARSER_START_TAG;
  const bool isDTD =
      context_->instate == XML_PARSER_DTD || markup.starts_with(kStartOfDeclarations);
  if (markup.size() > (isDTD ? limits_.declarationsLength : limits_.textLength))
    stop(NSXMLParserInternalError, "A piece of markup or text is too long.");
  else if (isTag && unfinishedTag_.attributes(markup, place()) > limits_.attributeCount)
    stopForAttributes();
}

std::string_view PushParser::Session::unfinished() const noexcept {
  return viewOf(context_->input->cur, context_->input->end);
}

NSUInteger PushParser::Session::place() const noexcept {
  const xmlParserInput& input = *context_->input;
  return input.consumed + static_cast<NSUInteger>(input.cur - input.base);
}

void PushParser::Session::hearOf(const xmlError& error) {
  if (error.level == XML_ERR_FATAL) {
    std::string_view message = error.message == nullptr ? "" : error.message;
    message.remove_suffix(message.ends_with('\n') ? 1 : 0);
    // Its code depends on how many bytes of the piece are left.
    if (message.starts_with("Input is not proper UTF-8") ||
        message.find("detected an error in element content") != message.npos)
      return stop(NSXMLParserInvalidEncodingError, "The bytes are no UTF-8.");
    if (error.code == XML_ERR_DOCUMENT_END && onlyZerosRemain()) {
      isBehindDocument_ = true;
      return end();
    }
    // libxml2 speaks of extra content here too.
    if (error.code == XML_ERR_DOCUMENT_END && context_->instate != XML_PARSER_EPILOG)
      return stopAtTooEarlyEnd();
    return stop(error.code, message);
  }
  // A prefix bound to nothing is told as a fault of namespaces in place of the attribute.
  if (error.domain == XML_FROM_NAMESPACE && error.code == XML_NS_ERR_XML_NAMESPACE &&
      error.str1 != nullptr)
    attributes_.addEmptyPrefix(error.str1);
}

void PushParser::Session::stopAtTooEarlyEnd() {
  if (open_.count() == 0)
    stop(NSXMLParserEmptyDocumentError, "The document holds no element.");
  else
    stop(NSXMLParserPrematureDocumentEndError, "The document ends before its elements do.");
}

/// Texts are often handed over with the zero behind them.
bool PushParser::Session::onlyZerosRemain() const {
  const xmlParserInput& input = documentInput();
  return context_->instate == XML_PARSER_EPILOG && input.cur < input.end &&
         areZeros({input.cur, input.end}) && areZeros(unconverted());
}

void PushParser::Session::stopBehindDocument() {
  if (!fault_)
    fault_ =
        Fault{XML_ERR_DOCUMENT_END, line_, column_, "Extra content at the end of the document"};
}

}  // namespace ORLFoundation::internal::xml
