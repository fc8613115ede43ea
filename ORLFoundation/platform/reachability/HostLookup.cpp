
#include <ORLFoundation/platform/reachability/HostLookup.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <netdb.h>

#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace ORLFoundation::internal::reachability {
namespace {

constexpr int kMostThreads = 4;

constinit base::ReplaceableFunction<HostResolver> resolvers;

Addresses addressesOf(const std::string& name, int flags) {
  addrinfo wanted{};
  wanted.ai_flags = flags;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  if (::getaddrinfo(name.c_str(), nullptr, &wanted, &list) != 0) return {};
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(list, &::freeaddrinfo);
  Addresses addresses;
  for (const addrinfo* one = list; one != nullptr; one = one->ai_next) {
    sockaddr_storage address{};
    if (one->ai_addrlen > sizeof address) continue;
    std::memcpy(&address, one->ai_addr, one->ai_addrlen);
    addresses.push_back(address);
  }
  return addresses;
}

/// Names that wait, and the threads that work on them; a thread ends when none waits.
class Lookups {
 public:
  struct Name {
    std::string text;
    std::function<void(Addresses)> found;
  };

  void add(Name name) {
    const std::lock_guard guard(lock_);
    waiting_.push_back(std::move(name));
    if (threads_ == kMostThreads) return;
    std::thread([this] { work(); }).detach();
    ++threads_;
  }

 private:
  void work() {
    while (auto name = next()) {
      const auto resolver = resolvers.current();
      name->found(resolver ? (*resolver)(name->text) : addressesOf(name->text, AI_ADDRCONFIG));
    }
  }

  /// nil ends the thread.
  std::optional<Name> next() {
    const std::lock_guard guard(lock_);
    if (waiting_.empty()) {
      --threads_;
      return std::nullopt;
    }
    Name name = std::move(waiting_.front());
    waiting_.pop_front();
    return name;
  }

  std::mutex lock_;
  std::deque<Name> waiting_;
  int threads_ = 0;
};

}  // namespace

HostResolver exchangeHostResolver(HostResolver resolver) {
  return resolvers.exchange(std::move(resolver));
}

std::optional<sockaddr_storage> addressOfNumbers(const std::string& text) {
  const Addresses addresses = addressesOf(text, AI_NUMERICHOST);
  return addresses.empty() ? std::nullopt : std::optional(addresses.front());
}

void lookUpHost(const std::string& name, std::function<void(Addresses)> found) {
  static auto& lookups = *new Lookups;
  lookups.add({name, std::move(found)});
}

}  // namespace ORLFoundation::internal::reachability
