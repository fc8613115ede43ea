#include "security/archive_task.h"

#include <ORLFoundation/tasks/async/CooperativeContext.h>

#include <utility>

namespace orlftool {

void runArchiveTask(const ArchiveTask& task, const std::string& message,
                    ORLFoundation::AppleArchiveOptions options) {
  const WorkProgress progress(message, std::nullopt, ProgressUnit::bytes);
  options.progress = progress.item();
  const auto job = ORLFoundation::CooperativeJob<>::start(
      task(std::move(options)), ORLFoundation::CooperativeExecutorOnGlobalQueue());
  job->result();
}

}  // namespace orlftool
