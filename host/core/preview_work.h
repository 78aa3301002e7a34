// What the preview has done on another thread, one piece at a time.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "host/core/print_plan.h"

namespace fax::host {

// What a piece of work came to.
struct PreviewAnswer {
  std::size_t document = 0;
  std::optional<PagesRead> read;  // of that document
  std::optional<Result<PagePicture>> picture;
};

using PreviewWork = std::function<void(std::shared_ptr<PreviewAnswer> const &, Stop const &)>;

// Reads a document of the plan.
PreviewWork reading(PrintPlan const &plan, std::size_t at, PageTool const &tool, Server const &server);

// Draws a page of the plan, one whose spot() is known, at most so many pixels wide and high.
PreviewWork drawing(PrintPlan const &plan, int page, PageTool const &tool, int width, int height);

}  // namespace fax::host
