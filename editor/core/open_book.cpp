#include "editor/core/open_book.h"

#include "texts/texts.h"

#include <sys/stat.h>

#include <cerrno>

namespace fax::editor {

Status OpenBook::place_of(std::string const &path, Place &place) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return errno == EACCES ? Status::no_permission : Status::no_file;
  place = {found.st_dev, found.st_ino};
  return Status::success;
}

Status OpenBook::open(std::string const &path, std::unique_ptr<OpenBook> &book) {
  auto opened = std::make_unique<OpenBook>();
  opened->path_ = path;
  Status const status = opened->reopen();
  if (status == Status::success) book = std::move(opened);
  return status;
}

Status OpenBook::reopen() {
  Place place;
  if (Status const status = place_of(path_, place); status != Status::success) return status;
  gad::File file;
  Status status = gad::File::open(path_, gad::Access::change, file);
  bool const can_change = status == Status::success;
  if (status == Status::read_only) status = gad::File::open(path_, gad::Access::read, file);
  if (status != Status::success) return status;
  std::swap(file_, file);
  if (status = read(); status != Status::success) {
    std::swap(file_, file);
    return status;
  }
  place_ = place;
  can_change_ = can_change;
  steps_.clear();
  return Status::success;
}

// The version first: what comes after it is seen again as a change of another program, and not lost.
Status OpenBook::read() {
  std::int64_t version = 0;
  auto contents = std::make_shared<Contents>();
  if (Status const status = file_.version(version); status != Status::success) return status;
  if (Status const status = Contents::read(file_, *contents); status != Status::success) return status;
  version_ = version;
  contents_ = std::move(contents);
  return Status::success;
}

Status OpenBook::refresh(bool &changed) {
  changed = false;
  Place place;
  if (Status const status = place_of(path_, place); status != Status::success) return status;
  Status status = Status::success;
  if (!(place == place_)) {
    status = reopen();
    changed = status == Status::success;
    return status;
  }
  std::int64_t version = 0;
  if (status = file_.version(version); status != Status::success || version == version_) return status;
  status = read();
  changed = status == Status::success;
  return status;
}

Outcome OpenBook::attempt(Step &step) {
  if (!can_change_) return {Status::read_only, {}, {}};
  // Another file at the path: what is written into the old one would be lost.
  Place place;
  if (Status const status = place_of(path_, place); status != Status::success) return {status, {}, {}};
  if (!(place == place_)) {
    Status const status = reopen();
    return {status, status == Status::success ? tr("Another file was put in the place of this address book.") : "", {}};
  }
  gad::Change change;
  if (Status const status = file_.begin(change); status != Status::success) return {status, {}, {}};
  std::int64_t version = 0;
  if (Status const status = file_.version(version); status != Status::success) return {status, {}, {}};
  if (version != version_)
    if (Status const status = read(); status != Status::success) return {status, {}, {}};
  Outcome outcome;
  if (!holds(step, *contents_, outcome.conflict)) return outcome;
  Step made = step;
  outcome.status = carry_out(made, change);
  if (outcome.status == Status::no_entry) outcome.conflict = tr("Another program has deleted an entry or a group of it.");
  if (!outcome.made()) return outcome;
  if (outcome.status = change.commit(); outcome.status != Status::success) return outcome;
  step = std::move(made);
  // The step is in the file. When it cannot be read now, the next refresh does: no version is -1.
  if (read() != Status::success) version_ = -1;
  return outcome;
}

Outcome OpenBook::make(Step const &step) {
  Step made = step;
  Outcome outcome = attempt(made);
  if (outcome.made()) steps_.done(std::move(made));
  return outcome;
}

Outcome OpenBook::undo() {
  if (steps_.to_undo() == nullptr) return {};
  Step back = reversed(*steps_.to_undo());
  Outcome outcome = attempt(back);
  if (outcome.made())
    steps_.undone();
  else if (!outcome.conflict.empty() || outcome.status == Status::present)
    steps_.forget_undo();
  outcome.title = back.title;
  return outcome;
}

Outcome OpenBook::redo() {
  if (steps_.to_redo() == nullptr) return {};
  Step again = *steps_.to_redo();
  Outcome outcome = attempt(again);
  if (outcome.made())
    steps_.redone();
  else if (!outcome.conflict.empty() || outcome.status == Status::present)
    steps_.forget_redo();
  outcome.title = again.title;
  return outcome;
}

}  // namespace fax::editor
