/// The event parser below `NSXMLParser`: takes a document in pieces of any size. No header of
/// libxml2 is seen here, and no exception passes through its frames.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>
#include <ORLFoundation/platform/xml/internal/TagPlace.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::xml {

/// Why a parse ended early, and where: lines and columns begin at 1.
struct Fault {
  NSInteger code = 0;
  NSInteger line = 0;
  NSInteger column = 0;
  std::string message;
};

/// What takes the events. It may throw.
class EventSink {
 public:
  virtual ~EventSink() = default;
  virtual void startDocument() = 0;
  virtual void startElement(std::string_view name,
                            const std::shared_ptr<NSDictionary>& attributes) = 0;
  virtual void endElement(std::string_view name) = 0;
  virtual void characters(std::string_view text) = 0;
  virtual void ignorableWhitespace(std::string_view text) = 0;
};

class PushParser {
 public:
  /// The sink must live as long as the parser.
  PushParser(EventSink& sink, const NSXMLParserLimits& limits);
  ~PushParser();
  PushParser(const PushParser&) = delete;
  PushParser& operator=(const PushParser&) = delete;

  /// Takes the next bytes; false when the parse is over and wants no more. Throws what the sink
  /// threw, after which nothing may be pushed.
  [[nodiscard]] bool push(std::span<const std::uint8_t> bytes);
  /// The document has no more bytes. true when it was whole and nothing went wrong.
  [[nodiscard]] bool finish();
  /// Lets no further event out; from inside of an event the place of that event is kept. The first
  /// fault stays.
  void stop(NSInteger code, std::string_view message);

  [[nodiscard]] const std::optional<Fault>& fault() const noexcept;
  /// How far the document was read.
  [[nodiscard]] NSInteger line() const noexcept;
  [[nodiscard]] NSInteger column() const noexcept;
  /// The beginning of the start tag whose event is told.
  [[nodiscard]] TagPlace startTag() const noexcept;

 private:
  class Session;
  std::unique_ptr<Session> session_;
};

}  // namespace ORLFoundation::internal::xml
