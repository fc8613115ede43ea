// Reads whatever bytes as a store file; in write-ahead mode too, where bytes of its header say so.
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation;
  static const orlftest::TemporaryFolder folder(orlftest::parentInMemory());
  const std::string path =
      folder.write("store", std::string_view(reinterpret_cast<const char*>(data), size));
  std::shared_ptr<const NSError> error;
  const auto metadata = NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(
      NSSQLiteStoreType, NSURL::fileURLWithPath(path), nullptr, &error);
  if ((metadata == nullptr) == (error == nullptr)) std::abort();
  if (metadata && !metadata->objectForKey(NSStoreUUIDKey)) std::abort();
  ::unlink(path.c_str());
  return 0;
}
