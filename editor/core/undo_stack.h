// The steps that can be undone and redone.
#pragma once

#include "editor/core/step.h"

#include <vector>

namespace fax::editor {

class UndoStack {
public:
  // A step that was carried out. What was undone before cannot be redone any more. The oldest steps are forgotten when
  // there are more than 200 or when together they hold more than a million small changes.
  void done(Step step);

  // The next step to undo or redo; nullptr for none.
  Step const *to_undo() const { return undone_up_to_ == 0 ? nullptr : &steps_[undone_up_to_ - 1]; }
  Step const *to_redo() const { return undone_up_to_ == steps_.size() ? nullptr : &steps_[undone_up_to_]; }

  // It was carried out.
  void undone() { --undone_up_to_; }
  void redone() { ++undone_up_to_; }

  // It cannot be carried out any more: it and all that lie behind it are forgotten.
  void forget_undo();
  void forget_redo() { steps_.resize(undone_up_to_); }

  void clear();

private:
  std::vector<Step> steps_;
  std::size_t undone_up_to_ = 0;  // steps before this one can be undone, the others redone
};

}  // namespace fax::editor
