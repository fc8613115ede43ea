#include <ORLFoundation/interchange/qif/ORLFRecordWriter.h>

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/stream/EncodedText.h>
#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <utility>

namespace ORLFoundation {
namespace {

constexpr NSInteger kLeastFractionDigits = 2;

std::shared_ptr<NSNumberFormatter> newAmountFormatter() {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter->setMinimumFractionDigits(kLeastFractionDigits);
  return formatter;
}

}  // namespace

const std::shared_ptr<NSOutputStream>& ORLFRecordWriter::stream() {
  if (!stream_) stream_ = NSOutputStream::initToMemory();
  return stream_;
}

void ORLFRecordWriter::setStream(std::shared_ptr<NSOutputStream> value) {
  stream_ = std::move(value);
}

const std::shared_ptr<NSDateFormatter>& ORLFRecordWriter::dateFormatter() {
  if (!dateFormatter_) dateFormatter_ = newDateFormatter();
  return dateFormatter_;
}

void ORLFRecordWriter::setDateFormatter(std::shared_ptr<NSDateFormatter> value) {
  dateFormatter_ = std::move(value);
}

const std::shared_ptr<NSNumberFormatter>& ORLFRecordWriter::amountFormatter() {
  if (!amountFormatter_) amountFormatter_ = newAmountFormatter();
  return amountFormatter_;
}

void ORLFRecordWriter::setAmountFormatter(std::shared_ptr<NSNumberFormatter> value) {
  amountFormatter_ = std::move(value);
}

bool ORLFRecordWriter::writeStringToStream(std::string_view string, NSErrorSlot error) {
  return internal::stream::writeText(*stream(), string, encoding_, error);
}

bool ORLFRecordWriter::beginWriting(NSErrorSlot /*error*/) {
  if (stream()->streamStatus() == NSStreamStatusNotOpen) stream()->open();
  return true;
}

}  // namespace ORLFoundation
