// Takes any bytes for the file of a store: what is read is a list or an error, what is checked is
// one of five findings, and a file that opens is written and read again.

#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

using namespace ORLFoundation;

namespace {

/// One file, gone at the process's end.
struct StoreFile {
  const std::filesystem::path path =
      orlftest::folderInMemory() + "/orlf-encrypted-store-fuzz-" + std::to_string(::getpid());
  const NSURL url = NSURL::fileURLWithPath(path.string());
  ~StoreFile() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const StoreFile file;
  std::ofstream(file.path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

  std::shared_ptr<const NSError> error, problem;
  const id list = ORLFEncryptedStore::readEncryptedPropertyListForFileAtURL(file.url, "pw", &error);
  if (list.isNil() != (error != nullptr)) std::abort();
  const auto finding = ORLFEncryptedStore::checkPassword("pw", file.url, &problem);
  if ((finding == ORLFEncryptedStoreUnreadable) != (problem != nullptr)) std::abort();
  if (finding < ORLFEncryptedStoreUnreadable || finding > ORLFEncryptedStoreNotEncrypted)
    std::abort();
  if (finding != ORLFEncryptedStoreOpens) return 0;

  // XML cannot hold everything that the binary form can.
  if (!ORLFEncryptedStore::writeEncryptedPropertyList(list, file.url, "pw")) return 0;
  if (ORLFEncryptedStore::checkPassword("pw", file.url) != ORLFEncryptedStoreOpens) std::abort();
  return 0;
}
