#include "editor/core/undo_stack.h"

namespace fax::editor {
namespace {
constexpr std::size_t most_steps = 200;
constexpr std::size_t most_changes = 1'000'000;
}  // namespace

void UndoStack::done(Step step) {
  forget_redo();
  steps_.push_back(std::move(step));
  std::size_t kept = 0, changes = 0;
  while (kept < steps_.size() && kept < most_steps) {
    changes += steps_[steps_.size() - 1 - kept].changes.size();
    if (kept > 0 && changes > most_changes) break;
    ++kept;
  }
  steps_.erase(steps_.begin(), steps_.end() - static_cast<std::ptrdiff_t>(kept));
  undone_up_to_ = steps_.size();
}

void UndoStack::forget_undo() {
  steps_.erase(steps_.begin(), steps_.begin() + static_cast<std::ptrdiff_t>(undone_up_to_));
  undone_up_to_ = 0;
}

void UndoStack::clear() {
  steps_.clear();
  undone_up_to_ = 0;
}

}  // namespace fax::editor
