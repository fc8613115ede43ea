#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserObjectBuilder.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

using namespace ORLFoundation;

namespace {

class Objects : public ORLFXMLParserObjectBuilder {
  id makeBuiltObjectForElement(std::string_view /*element*/,
                               const std::shared_ptr<NSDictionary>& /*attributes*/) override {
    return std::make_shared<NSMutableDictionary>();
  }
};

class Parser : public ORLFXMLParser {
 public:
  std::shared_ptr<Objects> top;
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "property") return std::make_shared<ORLFXMLParserPropertyBuilder>();
    if (name != "object") return nullptr;
    const auto objects = std::make_shared<Objects>();
    if (!top) top = objects;
    return objects;
  }
};

/// What came of a parse, in words.
std::string outcome(std::int32_t behavior, const NSData& data, bool asStream) {
  const auto parser = std::make_shared<Parser>();
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
