/// Archives' operations run to their end, for tests.
#pragma once

#include <ORLFoundation/platform/container/ArchiveError.h>
#include <ORLFoundation/security/archives/AppleArchive.h>
#include <ORLFoundation/security/archives/internal/ArchiveJobs.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace orlftest {

/// The domain and the code of what went wrong; an empty domain for nothing.
struct Outcome {
  std::string domain;
  ORLFoundation::NSInteger code = 0;
  std::string text;

  [[nodiscard]] bool isGood() const { return domain.empty(); }
  [[nodiscard]] bool is(std::string_view expected, ORLFoundation::NSInteger number) const {
    return domain == expected && code == number;
  }
};

template <class Work>
Outcome outcomeOf(const Work& work) {
  try {
    work();
  } catch (const ORLFoundation::ArchiveError& failure) {
    return {failure.error()->domain(), failure.error()->code(), failure.what()};
  }
  return {};
}

/// Starts the task on the global queue and waits for its end.
inline Outcome outcomeOf(ORLFoundation::CooperativeTask<> task) {
  const auto job = ORLFoundation::CooperativeJob<>::start(
      std::move(task), ORLFoundation::CooperativeExecutorOnGlobalQueue());
  return outcomeOf([&] { job->result(); });
}

inline ORLFoundation::NSData secret(std::string_view password) {
  return ORLFoundation::NSData(password);
}

/// What a password costs in tests that are not about that.
inline constexpr ORLFoundation::internal::crypto::ScryptCost kCheapCost{16, 1, 1};

/// Packs on the calling thread, under a cheap password key.
inline Outcome packQuickly(const std::string& from, const std::string& to,
                           const std::optional<std::string>& password = std::nullopt) {
  using namespace ORLFoundation;
  return outcomeOf([&] {
    internal::archives::ArchiveJob job([] {}, {});
    job.pack(NSURL::fileURLWithPath(from), NSURL::fileURLWithPath(to),
             password ? std::optional(secret(*password)) : std::nullopt, kCheapCost);
  });
}

inline Outcome extractQuickly(const std::string& from, const std::string& to,
                              const std::optional<std::string>& password = std::nullopt,
                              ORLFoundation::AppleArchiveOptions options = {}) {
  using namespace ORLFoundation;
  return outcomeOf([&] {
    internal::archives::ArchiveJob job([] {}, std::move(options));
    job.extract(NSURL::fileURLWithPath(from), NSURL::fileURLWithPath(to),
                password ? std::optional(secret(*password)) : std::nullopt);
  });
}

}  // namespace orlftest
