#include "io/ending_signals.h"

#include <ORLFoundation/platform/base/TemporaryPath.h>
#include <unistd.h>

#include <atomic>

namespace orlftool {
namespace {

std::atomic<int> rowToErase{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void endTidily(int number) {
  const int descriptor = rowToErase.exchange(-1);
  if (descriptor >= 0) static_cast<void>(!::write(descriptor, kEraseRow.data(), kEraseRow.size()));
  ORLFoundation::internal::base::removeTemporaryFiles();
  static_cast<void>(std::signal(number, SIG_DFL));
  static_cast<void>(std::raise(number));  // comes when this handler has returned
}

}  // namespace

EndingSignals::EndingSignals() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    if (::sigaction(number, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) continue;
    struct sigaction action {};
    action.sa_handler = &endTidily;
    if (::sigaction(number, &action, nullptr) == 0) before_.emplace_back(number, before);
  }
}

EndingSignals::~EndingSignals() {
  for (const auto& [number, action] : before_) ::sigaction(number, &action, nullptr);
}

void setRowToErase(int descriptor) noexcept { rowToErase = descriptor; }

}  // namespace orlftool
