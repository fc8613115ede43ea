// Repairs whatever bytes lie in a store file and in the journal beside it. The first byte says
// which journal it is, the two behind it how many sixteens of bytes are the store's.
#include <ORLFoundation/files/repair/ORLFPersistentStoreRepair.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;

constexpr std::array kJournals{"-journal", "-wal", ""};
constexpr std::size_t kHeader = 3, kUnit = 16;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < kHeader) return 0;
  static const orlftest::TemporaryFolder folder(orlftest::parentInMemory());
  static const auto loudSink = NSSetLogSink([](std::string_view) {});
  const std::string_view bytes(reinterpret_cast<const char*>(data) + kHeader, size - kHeader);
  const std::size_t length = std::min(kUnit * (data[1] * 256U + data[2]), bytes.size());
  const std::string_view journal = kJournals.at(data[0] % kJournals.size());
  const std::string path = folder.write("store", bytes.substr(0, length));
  if (!journal.empty()) folder.write("store" + std::string(journal), bytes.substr(length));

  const NSURL url = NSURL::fileURLWithPath(path);
  std::shared_ptr<const NSError> error;
  const auto metadata = orlfMetadataForPersistentStoreOfType(NSSQLiteStoreType, url, &error);
  if ((metadata == nullptr) == (error == nullptr)) std::abort();
  if (metadata && !metadata->objectForKey(NSStoreUUIDKey)) std::abort();
  if (orlfJournalModeForSQLPersistentStoreAtURL(url) > ORLFPersistentStoreJournalModeDelete)
    std::abort();
  for (const char* file : {"", "-journal", "-wal", "-shm"}) ::unlink((path + file).c_str());
  return 0;
}
