#include "progress/work_progress.h"

#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <limits>

#include "progress/job_progress.h"

namespace orlftool {

WorkProgress::WorkProgress(const std::string& message, std::optional<double> total,
                           ProgressUnit unit)
    : item_(jobProgressItem()) {
  if (!item_) return;
  setJobProgressUnit(unit);
  show(message, total);
}

WorkProgress::WorkProgress(const WorkProgress& whole, const std::string& message,
                           std::optional<double> total)
    : item_(whole.item_) {
  if (item_) show(message, total);
}

/// Puts a child of `item_` in its place.
void WorkProgress::show(const std::string& message, std::optional<double> total) {
  // Under an infinite maximum the value is kept as it is.
  constexpr double kNobodyKnows = std::numeric_limits<double>::infinity();
  item_ = item_->childProgressItemWithTotalCount(total.value_or(kNobodyKnows));
  item_->setIndeterminate(!total);
  item_->setMessage(message);
  item_->addToIndicator();
}

WorkProgress::~WorkProgress() {
  if (item_) item_->removeFromIndicator();
}

void WorkProgress::update(double done) const {
  if (item_) item_->updateValue(done);
}

}  // namespace orlftool
