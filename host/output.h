// The document to a file or to the desktop's viewer instead of a queue.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "host/core/document.h"
#include "host/core/failure.h"

namespace fax::host {

// Bytes read so far and the document's size; false cancels. Called on the calling thread.
using OutputProgress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

// Writes the document, a PDF, to path. The file appears as a whole or not at all; an existing one
// is replaced. Failure (ExitCode::file, also for a document that is no PDF; or cancelled).
std::optional<Failure> write_output(Document const &document, std::string const &path,
                                    OutputProgress const &progress);

// Writes the document to a new file of its own (in the folder for temporary files; the viewer may need it for as long as
// it runs, so it stays) and opens it with xdg-open. Returns when that has ended, or runs after three seconds still.
std::optional<Failure> open_preview(Document const &document, OutputProgress const &progress);

}  // namespace fax::host
