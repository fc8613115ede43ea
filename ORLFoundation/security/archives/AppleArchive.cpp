#include <ORLFoundation/security/archives/AppleArchive.h>

#include <ORLFoundation/platform/container/ArchiveError.h>
#include <ORLFoundation/platform/crypto/KeyedPrimitives.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/security/archives/FoundationError.h>
#include <ORLFoundation/security/archives/internal/ArchiveJobs.h>

#include <functional>
#include <stop_token>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::archives::ArchiveJob;
using Work = std::function<void(ArchiveJob& job)>;
using Job = CooperativeJob<>;

/// To be awaited: the end of a job.
class JobEnd {
 public:
  explicit JobEnd(std::shared_ptr<Job> job) : job_(std::move(job)) {}

  [[nodiscard]] bool await_ready() const noexcept { return job_->isFinished(); }
  template <class Promise>
  void await_suspend(std::coroutine_handle<Promise> coroutine) const {
    // The coroutine may end, with this in it, before the job's list has been written to.
    const std::shared_ptr<Job> job = job_;
    const internal::async::Continuation next{coroutine.promise().context.get(), coroutine};
    job->whenFinished([next] { next.resume(); });
  }
  static void await_resume() noexcept {}

 private:
  const std::shared_ptr<Job> job_;
};

[[noreturn]] void throwUnknown(const std::exception& failure) {
  std::shared_ptr<const NSError> cause;
  NSFillErrorSlot(&cause, FoundationErrorDomain, static_cast<NSInteger>(FoundationError::unknown),
                  failure.what());
  throw ArchiveError(NSErrorOfFoundationError(FoundationError::unknown, cause));
}

/// Does the work in one step.
CooperativeTask<> blockingTask(Work work, AppleArchiveOptions options) {
  const auto context = co_await CurrentContext();
  ArchiveJob job([&context] { context->checkCancellation(); }, std::move(options));
  try {
    work(job);
  } catch (const ArchiveError&) {
    throw;
  } catch (const CancellationError&) {
    throw;
  } catch (const std::exception& failure) {
    throwUnknown(failure);
  }
}

/// Has the global queue do the work, so that it never holds the caller's executor.
CooperativeTask<> backgroundTask(Work work, AppleArchiveOptions options) {
  const auto context = co_await CurrentContext();
  context->checkCancellation();
  const auto job = Job::start(blockingTask(std::move(work), std::move(options)),
                              CooperativeExecutorOnGlobalQueue());
  const std::stop_callback stop(context->stopToken(), [&job] { job->cancel(); });
  co_await JobEnd(job);
  job->result();
}

/// The password in memory that is wiped at the end; the text is wiped at once.
NSData secretOf(std::string& password) {
  NSData secret = NSData::dataWipedAtRelease({password.begin(), password.end()});
  internal::crypto::wipe(std::span<char>(password));
  return secret;
}

}  // namespace

CooperativeTask<> AppleArchive::archive(NSURL source, NSURL to, AppleArchiveOptions options) {
  return backgroundTask([source = std::move(source), to = std::move(to)](
                            ArchiveJob& job) { job.pack(source, to, std::nullopt); },
                        std::move(options));
}

CooperativeTask<> AppleArchive::archive(NSURL source, NSURL to, std::string withPassword,
                                        AppleArchiveOptions options) {
  return backgroundTask(
      [source = std::move(source), to = std::move(to),
       secret = secretOf(withPassword)](ArchiveJob& job) { job.pack(source, to, secret); },
      std::move(options));
}

CooperativeTask<> AppleArchive::extract(NSURL source, NSURL to, AppleArchiveOptions options) {
  return backgroundTask([source = std::move(source), to = std::move(to)](
                            ArchiveJob& job) { job.extract(source, to, std::nullopt); },
                        std::move(options));
}

CooperativeTask<> AppleArchive::extract(NSURL source, NSURL to, std::string withPassword,
                                        AppleArchiveOptions options) {
  return backgroundTask(
      [source = std::move(source), to = std::move(to),
       secret = secretOf(withPassword)](ArchiveJob& job) { job.extract(source, to, secret); },
      std::move(options));
}

}  // namespace ORLFoundation
