// An address book that is open for editing. Every step is in the file, and safe there, before it counts as made; what
// other programs do to the file meanwhile is noticed and never written over unasked.
//
// One thread at a time; what contents() gave may be read by others meanwhile.
#pragma once

#include "editor/core/contents.h"
#include "editor/core/undo_stack.h"

#include <sys/types.h>

#include <memory>
#include <string>

namespace fax::editor {

// What came of a step.
struct Outcome {
  Status status = Status::success;
  // Not empty: a sentence about what another program has changed; nothing of the step was made, contents() is new.
  std::string conflict;
  std::string title;  // of the step that was undone or redone

  bool made() const { return status == Status::success && conflict.empty(); }
};

class OpenBook {
public:
  // Opens a book and reads it. Without the right to change it the book is open for reading. book is unchanged by a
  // failure.
  static Status open(std::string const &path, std::unique_ptr<OpenBook> &book);

  std::string const &path() const { return path_; }
  bool can_change() const { return can_change_; }
  std::shared_ptr<Contents const> contents() const { return contents_; }

  // Reads anew when another program has changed the file, or has put another file in its place (then nothing can be
  // undone any more); changed says so.
  Status refresh(bool &changed);

  // Makes a step, whole or not at all. The file counts as it is now, not as it was read. present: an entry or a group
  // of that name is there already.
  Outcome make(Step const &step);

  // With nothing to undo: made, without a title. A conflict makes it, and all steps before it, impossible to undo.
  Outcome undo();
  Outcome redo();
  UndoStack const &steps() const { return steps_; }

private:
  struct Place {
    dev_t device = 0;
    ino_t file = 0;
    bool operator==(Place const &) const = default;
  };
  static Status place_of(std::string const &path, Place &place);

  Status reopen();
  Status read();
  Outcome attempt(Step &step);

  std::string path_;
  Place place_;
  gad::File file_;
  bool can_change_ = false;
  std::int64_t version_ = 0;  // of the file when contents_ was read
  std::shared_ptr<Contents const> contents_;
  UndoStack steps_;
};

}  // namespace fax::editor
