// Step callbacks: work a page does in steps while it is shown (the creation
// page creates one virtual disk per step). The framework calls the step
// between the operator's actions, so each step's redraws reach the screen
// before the next one starts.
#include "FrameworkState.h"

namespace framework {
namespace {

// A step that never reports completion must not hold the operator's input
// forever: after this many calls the next action comes first.
constexpr UINTN kMaxStepsPerAction = 4096;

VOID ForgetStep() {
  gState.StepPage = nullptr;
  gState.Step = nullptr;
}

}  // namespace

EFI_STATUS EFIAPI RegisterStepCallback(HOST_PAGE_NODE *Page,
                                       TARN_STEP_CALLBACK Step) {
  if (Step == nullptr) {
    ForgetStep();
    return EFI_SUCCESS;
  }
  HOST_PAGE_NODE *Shown = PageToShow(Page);
  if (Shown == nullptr) {
    return EFI_INVALID_PARAMETER;
  }
  gState.StepPage = Shown;
  gState.Step = Step;
  return EFI_SUCCESS;
}

VOID RunDueSteps() {
  for (UINTN Count = 0; Count < kMaxStepsPerAction; Count++) {
    TARN_STEP_CALLBACK Step = gState.Step;
    if (Step == nullptr || gState.Page != gState.StepPage) {
      return;
    }
    if (!Step() && gState.Step == Step) {
      ForgetStep();
    }
    if (gState.Page != nullptr) {
      ProcessRefreshMarks(gState.Page);
    }
  }
}

VOID ForgetStepsIn(const HOST_PAGE_NODE *Node) {
  if (gState.StepPage != nullptr && IsInSubtree(gState.StepPage, Node)) {
    ForgetStep();
  }
}

}  // namespace framework
