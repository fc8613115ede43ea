#include <tests/security/ReleasedBlocks.h>

#include <gmock/gmock.h>
#include <libxml/parser.h>
#include <malloc.h>
#include <openssl/crypto.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <new>

namespace orlftest {

struct SecretSearch {
  struct Secret {
    SoughtSecret sought;
    std::atomic<bool> isFound{false};
  };
  std::deque<Secret> secrets;

  void look(const void* block, std::size_t size) {
    for (Secret& secret : secrets) {
      const std::string& bytes = secret.sought.bytes;
      const void* const found = ::memmem(block, size, bytes.data(), bytes.size());
      if (found != nullptr && !(found == block && secret.sought.mayBegin)) secret.isFound = true;
    }
  }
};

namespace {

/// null while nothing is looked for.
std::atomic<SecretSearch*> searchInUse{nullptr};

/// Looks, and clears the block: what a later one holds was not left there by this one.
void release(void* block) {
  if (block == nullptr) return;
  const std::size_t size = ::malloc_usable_size(block);
  if (SecretSearch* const search = searchInUse) search->look(block, size);
  explicit_bzero(block, size);
  std::free(block);
}

/// What moves is released where it was.
void* moved(void* block, std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) return nullptr;
  if (block != nullptr) std::memcpy(memory, block, std::min(size, ::malloc_usable_size(block)));
  release(block);
  return memory;
}

void* taken(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* takeForOpenSSL(std::size_t size, const char*, int) { return std::malloc(size); }
void* moveForOpenSSL(void* block, std::size_t size, const char*, int) { return moved(block, size); }
void releaseForOpenSSL(void* block, const char*, int) { release(block); }

/// Never given back: a thread may still look by the last one.
SecretSearch& newSearch() {
  static auto* const all = new std::deque<SecretSearch>;
  return all->emplace_back();
}

}  // namespace

ReleasedBlocks::ReleasedBlocks(const std::vector<SoughtSecret>& sought) : search_(newSearch()) {
  for (const SoughtSecret& secret : sought) search_.secrets.emplace_back().sought = secret;
}

ReleasedBlocks::Looking::Looking(SecretSearch& search) : search_(search) {
  for (auto& secret : search_.secrets) secret.isFound = false;
  searchInUse = &search_;
}

ReleasedBlocks::Looking::~Looking() { searchInUse = nullptr; }

std::vector<std::string> ReleasedBlocks::Looking::found() const {
  searchInUse = nullptr;
  std::vector<std::string> names;
  for (const auto& secret : search_.secrets)
    if (secret.isFound) names.push_back(secret.sought.name);
  return names;
}

}  // namespace orlftest

void* operator new(std::size_t size) { return orlftest::taken(size); }
void* operator new[](std::size_t size) { return orlftest::taken(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(std::max<std::size_t>(size, 1));
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(std::max<std::size_t>(size, 1));
}
void operator delete(void* block) noexcept { orlftest::release(block); }
void operator delete[](void* block) noexcept { orlftest::release(block); }
void operator delete(void* block, std::size_t) noexcept { orlftest::release(block); }
void operator delete[](void* block, std::size_t) noexcept { orlftest::release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { orlftest::release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { orlftest::release(block); }

int main(int count, char** words) {
  if (CRYPTO_set_mem_functions(&orlftest::takeForOpenSSL, &orlftest::moveForOpenSSL,
                               &orlftest::releaseForOpenSSL) != 1)
    return 1;
  if (xmlMemSetup(&orlftest::release, &std::malloc, &orlftest::moved, &::strdup) != 0) return 1;
  testing::InitGoogleMock(&count, words);
  return RUN_ALL_TESTS();
}
