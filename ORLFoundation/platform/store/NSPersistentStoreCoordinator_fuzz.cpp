// Reads whatever bytes as a store file; in write-ahead mode too, where bytes of its header say so.
#include <ORLFoundation/platform/store/NSPersistentStoreCoordinator.h>
#include <fcntl.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation;
  static const std::string path =
      orlftest::folderInMemory() + "/orlf_store_fuzz_" + std::to_string(::getpid());
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (file < 0 || ::write(file, data, size) != static_cast<ssize_t>(size)) std::abort();
  ::close(file);
  std::shared_ptr<const NSError> error;
  const auto metadata = NSPersistentStoreCoordinator::metadataForPersistentStoreOfType(
      NSSQLiteStoreType, NSURL::fileURLWithPath(path), nullptr, &error);
  if ((metadata == nullptr) == (error == nullptr)) std::abort();
  if (metadata && !metadata->objectForKey(NSStoreUUIDKey)) std::abort();
  ::unlink(path.c_str());
  return 0;
}
