#include <ORLFoundation/process/engine/ORLFProcessDelegate.h>

namespace ORLFoundation {

std::int32_t ORLFProcessDelegate::orlfProcessHistoryTypeForStep(ORLFProcess&, const Step&) {
  return 0;
}

bool ORLFProcessDelegate::orlfProcessWillLeaveStep(ORLFProcess&, const Step&) { return true; }

bool ORLFProcessDelegate::orlfProcessShouldAdvanceToStep(ORLFProcess&, const Step&, const id&) {
  return true;
}

bool ORLFProcessDelegate::orlfProcessAdvanceWithTransitionShouldFailFromStep(ORLFProcess&,
                                                                             Transition,
                                                                             const Step&,
                                                                             const id&) {
  return true;
}

bool ORLFProcessDelegate::orlfProcessAdvanceWithTransitionShouldEndProcessWithData(ORLFProcess&,
                                                                                   Transition,
                                                                                   const id&) {
  return true;
}

void ORLFProcessDelegate::orlfProcessDidLeaveStep(ORLFProcess&, const Step&) {}

void ORLFProcessDelegate::orlfProcessDidAdvanceToStep(ORLFProcess&, const Step&, const id&) {}

void ORLFProcessDelegate::orlfProcessDidEndProcessWithTransition(ORLFProcess&, Transition,
                                                                 const id&) {}

void ORLFProcessDelegate::orlfProcessDidJumpToStep(ORLFProcess&, const Step&, const id&) {}

void ORLFProcessDelegate::orlfProcessDidBackToStep(ORLFProcess&, const Step&, const id&) {}

}  // namespace ORLFoundation
