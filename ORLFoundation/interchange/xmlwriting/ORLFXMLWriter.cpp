#include <ORLFoundation/interchange/xmlwriting/ORLFXMLWriter.h>

#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>
#include <ORLFoundation/platform/text/NSStringBytes.h>

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::size_t kPiece = 2048;

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

ORLFXMLWriter::ORLFXMLWriter(std::shared_ptr<NSMutableData> outputData)
    : outputData_(std::move(outputData)) {}

bool ORLFXMLWriter::appendBytes(std::span<const std::uint8_t> bytes, NSErrorSlot) {
  if (outputData_ != nullptr) outputData_->appendBytes(bytes);
  return true;
}

bool ORLFXMLWriter::appendString(std::string_view string, bool allowLossy, NSErrorSlot error) {
  if (string.empty()) return true;
  const bool isFirst = outputData_ == nullptr || outputData_->length() == 0;
  const NSUInteger options =
      (isFirst ? NSStringEncodingConversionExternalRepresentation : NSUInteger{0}) |
      (allowLossy ? NSStringEncodingConversionAllowLossy : NSUInteger{0});
  NSStringBytes pieces(string, encoding_, options);
  // Bytes that stay as they are go straight into the buffer.
  const std::string_view kept = pieces.takeKeptBytes();
  if (!appendBytes(bytesOf(kept), error)) return false;
  return pieces.remaining().empty() || appendPieces(pieces, error);
}

bool ORLFXMLWriter::appendPieces(NSStringBytes& pieces, NSErrorSlot error) {
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
  if (!prettyPrinted_ || openCDataElementsCount_ != 0) return true;
  const std::string spacing = "\n" + std::string(2 * openElements_.size(), ' ');
  return appendString(spacing, true, error);
}

bool ORLFXMLWriter::writeStartElementName(std::string_view name, NSErrorSlot error) {
  if (!closeStartElementIfNeeded(error)) return false;
  if (!openElements_.empty() && !writePrettySpacingIfNeeded(error)) return false;
  if (!appendAll({"<", name}, error)) return false;
  startElementInProgress_ = true;
  openElements_.emplace_back(name);
  return true;
}

bool ORLFXMLWriter::writeAttribue(std::string_view attribute, std::string_view value,
                                  NSErrorSlot error) {
  if (!startElementInProgress_) return false;
  const std::string escaped = orlfStringByEscapingStandardXMLEntities(value);
  return appendAll({" ", attribute, "=", "\"", escaped, "\""}, error);
}

bool ORLFXMLWriter::writeCharacters(std::string_view characters, NSErrorSlot error) {
  if (!closeStartElementIfNeeded(error)) return false;
  const std::string escaped = orlfStringByEscapingStandardXMLEntities(characters);
  if (!appendString(escaped, false, error)) return false;
  ++openCDataElementsCount_;
  return true;
}

bool ORLFXMLWriter::writeEndElementForced(bool forced, NSErrorSlot error) {
  if (forced && !closeStartElementIfNeeded(error)) return false;
  bool isWritten = true;
  if (!openElements_.empty()) {
    const std::string name = std::move(openElements_.back());
    openElements_.pop_back();
    if (std::exchange(startElementInProgress_, false))
      isWritten = appendString("/>", false, error);
    else if (!writePrettySpacingIfNeeded(error) || !appendAll({"</", name, ">"}, error))
      return false;
  }
  if (openCDataElementsCount_ != 0) --openCDataElementsCount_;
  return isWritten;
}

bool ORLFXMLWriter::appendAll(std::initializer_list<std::string_view> strings, NSErrorSlot error) {
  joined_.clear();
  for (const std::string_view string : strings) joined_ += string;
  return appendString(joined_, false, error);
}

}  // namespace ORLFoundation
