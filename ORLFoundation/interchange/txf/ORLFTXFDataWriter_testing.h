/// A TXF writer as tests use it: in en_US.
#pragma once

#include <ORLFoundation/interchange/qif/ORLFRecordWriter_testing.h>
#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter.h>

namespace orlftest {

struct WrittenTXF : WrittenRecords<ORLFoundation::ORLFTXFDataWriter> {
  WrittenTXF() {
    using namespace ORLFoundation;
    const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
    static_cast<void>(writer.securitySharesFormatter());
  }
};

}  // namespace orlftest
