/// Appends XML to a buffer in the order of the calls: start tags, attributes, text, end tags. It
/// writes no declaration.
///
///     const auto buffer = std::make_shared<NSMutableData>();
///     ORLFXMLWriter writer(buffer);
///     writer.writeStartElementName("note");
///     writer.writeAttribue("day", "1&2");
///     writer.writeEndElementForced(false);
///     buffer->text();  // <note day="1&amp;2"/>
///
/// Every operation with an error slot gives true on success and never fills the slot. What was
/// written before a failure stays in the buffer. One thread at a time.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation {

class ORLFXMLWriter : public NSObject {
 public:
  /// `initForWritingWithMutableData:`  The buffer is shared with the caller.
  explicit ORLFXMLWriter(std::shared_ptr<NSMutableData> outputData);

  /// `appendBytes:length:error:`  Always true.
  bool appendBytes(std::span<const std::uint8_t> bytes, NSErrorSlot error = nullptr);
  /// `appendString:allowLossy:error:`  Converted in pieces of 2,048 bytes. false at a character
  /// that the encoding lacks, unless lossy; what stands before it has been written. A byte-order
  /// mark is written into an empty buffer only. An empty text succeeds.
  bool appendString(std::string_view string, bool allowLossy, NSErrorSlot error = nullptr);
  /// `closeStartElementIfNeeded:`  Ends a start tag in progress, which then counts as ended even if
  /// that fails.
  bool closeStartElementIfNeeded(NSErrorSlot error = nullptr);
  /// `writePrettySpacingIfNeeded:`  When pretty printed and no text is pending, a line feed and two
  /// blanks for each open element.
  bool writePrettySpacingIfNeeded(NSErrorSlot error = nullptr);
  /// `writeStartElementName:error:`  The name is written as it stands.
  bool writeStartElementName(std::string_view name, NSErrorSlot error = nullptr);
  /// `writeAttribue:value:error:`  false, and nothing written, outside of a start tag. The value is
  /// escaped, the name is not.
  bool writeAttribue(std::string_view attribute, std::string_view value,
                     NSErrorSlot error = nullptr);
  /// `writeCharacters:error:`  Escaped, which drops control characters, tabs and line breaks among
  /// them.
  bool writeCharacters(std::string_view characters, NSErrorSlot error = nullptr);
  /// `writeEndElementForced:error:`  Ends the innermost element: "/>" for one without content, or a
  /// full end tag where forced. With none open it succeeds and writes nothing. An end tag balances
  /// one write of text only: after two in one element, its parent's end tag is not indented either.
  /// This is required.
  bool writeEndElementForced(bool forced, NSErrorSlot error = nullptr);

  /// Off at first.
  [[nodiscard]] bool prettyPrinted() const noexcept { return prettyPrinted_; }
  void setPrettyPrinted(bool value) noexcept { prettyPrinted_ = value; }
  /// Whether a start tag waits for its end.
  [[nodiscard]] bool startElementInProgress() const noexcept { return startElementInProgress_; }
  void setStartElementInProgress(bool value) noexcept { startElementInProgress_ = value; }
  /// The number of an `NSStringEncoding`, UTF-8 at first.
  [[nodiscard]] NSUInteger encoding() const noexcept { return encoding_; }
  void setEncoding(NSUInteger value) noexcept { encoding_ = value; }
  /// Names, innermost last.
  [[nodiscard]] const std::vector<std::string>& openElements() const noexcept {
    return openElements_;
  }
  void setOpenElements(std::vector<std::string> value) { openElements_ = std::move(value); }
  /// Writes of text that no end tag has balanced; above 0, nothing is indented.
  [[nodiscard]] NSUInteger openCDataElementsCount() const noexcept {
    return openCDataElementsCount_;
  }
  void setOpenCDataElementsCount(NSUInteger value) noexcept { openCDataElementsCount_ = value; }
  /// Where bytes go; without one they are lost.
  [[nodiscard]] const std::shared_ptr<NSMutableData>& outputData() const noexcept {
    return outputData_;
  }
  void setOutputData(std::shared_ptr<NSMutableData> value) { outputData_ = std::move(value); }

  [[nodiscard]] std::string className() const override { return "ORLFXMLWriter"; }

 private:
  /// Converted by way of a buffer.
  bool appendPieces(std::string_view string, bool allowLossy, NSErrorSlot error);
  /// What is written together is joined first, with the end of a start tag in progress, which then
  /// counts as ended.
  void beginJoining();
  void joinSpacing(std::size_t depth);

  bool prettyPrinted_ = false;
  bool startElementInProgress_ = false;
  NSUInteger encoding_ = NSUTF8StringEncoding;
  std::vector<std::string> openElements_;
  NSUInteger openCDataElementsCount_ = 0;
  std::shared_ptr<NSMutableData> outputData_;
  std::string joined_;  // space that is kept
};

}  // namespace ORLFoundation
