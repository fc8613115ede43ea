// Reads any bytes as an archive in which all classes are allowed. What is read is archived again
// and read again.
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/object/NSLog.h>
#include <tests/archives/ArchiveSamples.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

using namespace ORLFoundation;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  NSSetLogSink([](std::string_view) {});
  std::shared_ptr<const NSError> error;
  const id object = NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(),
                                                        NSData(std::span(data, size)), &error);
  if (object.isNil() != (error != nullptr)) std::abort();
  if (object.isNil()) return 0;
  const auto again = NSKeyedArchiver::archivedDataWithRootObject(object, true);
  if (!again) std::abort();
  if (NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(), *again).isNil()) std::abort();
  return 0;
}
