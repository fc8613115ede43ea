/// A QIF writer as tests use it.
#pragma once

#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>
#include <ORLFoundation/interchange/qif/ORLFRecordWriter_testing.h>

namespace orlftest {

using WrittenQIF = WrittenRecords<ORLFoundation::ORLFQIFDataWriter>;

}  // namespace orlftest
