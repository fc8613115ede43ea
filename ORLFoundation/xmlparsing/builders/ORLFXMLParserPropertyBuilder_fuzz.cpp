#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserVocabulary_testing.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

using namespace ORLFoundation;

namespace {

/// What came of a parse, in words.
std::string outcome(std::int32_t behavior, const NSData& data, bool asStream) {
  const auto parser = std::make_shared<orlftest::VocabularyParser>();
  parser->setUnhandledElementBehavior(behavior);
  std::shared_ptr<const NSError> error;
  try {
    const bool isParsed = asStream ? parser->parseStream(NSInputStream::initWithData(data), &error)
                                   : parser->parseData(data, &error);
    if (isParsed != (error == nullptr)) std::abort();
    if (isParsed && !parser->fragmentHandlerStack().empty()) std::abort();
  } catch (const NSException& raised) {
    return raised.name();  // for a type without a name
  }
  if (error) return error->description();
  return parser->top ? parser->top->builtObject().description() : "";
}

}  // namespace

// Data and a stream come to the same; no error is without its record.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto silent = NSSetLogSink([](std::string_view) {});
  if (size == 0) return 0;
  const auto behavior = static_cast<std::int32_t>(data[0] % 4);
  const NSData document(std::span(data, size).subspan(1));
  if (outcome(behavior, document, false) != outcome(behavior, document, true)) std::abort();
  return 0;
}
