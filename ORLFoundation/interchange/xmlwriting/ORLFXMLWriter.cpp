#include <ORLFoundation/interchange/xmlwriting/ORLFXMLWriter.h>

#include <ORLFoundation/interchange/sgml/ORLFEntityText.h>
#include <ORLFoundation/platform/base/Bytes.h>
#include <ORLFoundation/platform/text/NSStringBytes.h>

#include <array>
#include <optional>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::base::bytesOf;
using internal::sgml::appendEscaped;

constexpr std::size_t kPiece = 2048;

}  // namespace

ORLFXMLWriter::ORLFXMLWriter(std::shared_ptr<NSMutableData> outputData)
    : outputData_(std::move(outputData)) {}

bool ORLFXMLWriter::appendBytes(std::span<const std::uint8_t> bytes, NSErrorSlot) {
  if (outputData_ != nullptr) outputData_->appendBytes(bytes);
  return true;
}

bool ORLFXMLWriter::appendString(std::string_view string, bool allowLossy, NSErrorSlot error) {
  // Bytes that stay as they are go straight into the buffer.
  const std::size_t kept = orlfLengthOfKeptBytes(string, encoding_);
  if (!appendBytes(bytesOf(string.substr(0, kept)), error)) return false;
  return kept == string.size() || appendPieces(string.substr(kept), allowLossy, error);
}

bool ORLFXMLWriter::appendPieces(std::string_view string, bool allowLossy, NSErrorSlot error) {
  const bool isFirst = outputData_ == nullptr || outputData_->length() == 0;
  const NSUInteger options =
      (isFirst ? NSStringEncodingConversionExternalRepresentation : NSUInteger{0}) |
      (allowLossy ? NSStringEncodingConversionAllowLossy : NSUInteger{0});
  NSStringBytes pieces(string, encoding_, options);
  std::array<std::uint8_t, kPiece> buffer;  // NOLINT: filled below as far as it is read
  while (!pieces.remaining().empty()) {
    const std::optional<std::size_t> used = pieces.getBytes(buffer);
    if (!used || !appendBytes(std::span(buffer).first(*used), error)) return false;
  }
  return true;
}

bool ORLFXMLWriter::closeStartElementIfNeeded(NSErrorSlot error) {
  if (!startElementInProgress_) return true;
  startElementInProgress_ = false;
  return appendString(">", false, error);
}

bool ORLFXMLWriter::writePrettySpacingIfNeeded(NSErrorSlot error) {
  joined_.clear();
  joinSpacing(openElements_.size());
  return appendString(joined_, true, error);
}

bool ORLFXMLWriter::writeStartElementName(std::string_view name, NSErrorSlot error) {
  beginJoining();
  if (!openElements_.empty()) joinSpacing(openElements_.size());
  joined_.append("<").append(name);
  if (!appendString(joined_, false, error)) return false;
  startElementInProgress_ = true;
  openElements_.emplace_back(name);
  return true;
}

bool ORLFXMLWriter::writeAttribue(std::string_view attribute, std::string_view value,
                                  NSErrorSlot error) {
  if (!startElementInProgress_) return false;
  joined_.assign(" ").append(attribute).append("=\"");
  appendEscaped(joined_, value);
  return appendString(joined_ += '"', false, error);
}

bool ORLFXMLWriter::writeCharacters(std::string_view characters, NSErrorSlot error) {
  beginJoining();
  appendEscaped(joined_, characters);
  if (!appendString(joined_, false, error)) return false;
  ++openCDataElementsCount_;
  return true;
}

bool ORLFXMLWriter::writeEndElementForced(bool forced, NSErrorSlot error) {
  if (forced && !closeStartElementIfNeeded(error)) return false;
  bool isWritten = true;
  if (!openElements_.empty()) {
    const bool isEmpty = std::exchange(startElementInProgress_, false);
    joined_.clear();
    if (isEmpty) {
      joined_ += "/>";
    } else {
      joinSpacing(openElements_.size() - 1);
      joined_.append("</").append(openElements_.back()).append(">");
    }
    openElements_.pop_back();
    isWritten = appendString(joined_, false, error);
    if (!isWritten && !isEmpty) return false;
  }
  if (openCDataElementsCount_ != 0) --openCDataElementsCount_;
  return isWritten;
}

void ORLFXMLWriter::beginJoining() {
  joined_.assign(std::exchange(startElementInProgress_, false) ? ">" : "");
}

void ORLFXMLWriter::joinSpacing(std::size_t depth) {
  if (prettyPrinted_ && openCDataElementsCount_ == 0) joined_.append("\n").append(2 * depth, ' ');
}

}  // namespace ORLFoundation
