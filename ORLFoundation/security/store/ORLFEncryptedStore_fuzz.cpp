// Takes any bytes for the file of a store: what is read is a list or an error, what is checked is
// one of five findings, and a file that opens is written and read again.

#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <tests/support/Files.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

using namespace ORLFoundation;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const orlftest::TemporaryFolder folder(orlftest::parentInMemory());
  const NSURL url = NSURL::fileURLWithPath(
      folder.write("store", std::string_view(reinterpret_cast<const char*>(data), size)));

  std::shared_ptr<const NSError> error, problem;
  const id list = ORLFEncryptedStore::readEncryptedPropertyListForFileAtURL(url, "pw", &error);
  if (list.isNil() != (error != nullptr)) std::abort();
  const auto finding = ORLFEncryptedStore::checkPassword("pw", url, &problem);
  if ((finding == ORLFEncryptedStoreUnreadable) != (problem != nullptr)) std::abort();
  if (finding < ORLFEncryptedStoreUnreadable || finding > ORLFEncryptedStoreNotEncrypted)
    std::abort();
  if (finding != ORLFEncryptedStoreOpens) return 0;

  // XML cannot hold everything that the binary form can.
  if (!ORLFEncryptedStore::writeEncryptedPropertyList(list, url, "pw")) return 0;
  if (ORLFEncryptedStore::checkPassword("pw", url) != ORLFEncryptedStoreOpens) std::abort();
  return 0;
}
