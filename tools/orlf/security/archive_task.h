/// What `orlf archive` and `orlf extract` have in common.
#pragma once

#include <ORLFoundation/security/archives/AppleArchive.h>

#include <functional>
#include <string>

#include "progress/work_progress.h"

namespace orlftool {

/// Makes the task of an operation, with the options given.
using ArchiveTask =
    std::function<ORLFoundation::CooperativeTask<>(ORLFoundation::AppleArchiveOptions options)>;

/// Runs a task to its end and shows how far it is. Throws what the task throws.
void runArchiveTask(const ArchiveTask& task, const std::string& message,
                    ORLFoundation::AppleArchiveOptions options = {});

}  // namespace orlftool
