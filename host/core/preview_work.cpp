#include "host/core/preview_work.h"

namespace fax::host {

PreviewWork reading(PrintPlan const &plan, std::size_t at, PageTool const &tool, Server const &server) {
  return [at, document = plan.documents().at(at).source, tool, server, layout = plan.layout()](
             std::shared_ptr<PreviewAnswer> const &answer, Stop const &stop) {
    answer->document = at;
    answer->read = read_pages(tool, document, server, layout, stop);
  };
}

PreviewWork drawing(PrintPlan const &plan, int page, PageTool const &tool, int width, int height) {
  PageSpot const spot = plan.spot(page).value();
  return [page = spot.page, pdf = plan.documents()[spot.document].read->pdf.value(), tool, width, height](
             std::shared_ptr<PreviewAnswer> const &answer, Stop const &stop) {
    answer->picture = tool.picture(pdf, page, width, height, stop);
  };
}

}  // namespace fax::host
