// Counting and drawing pages, by poppler.
#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-image.h>
#include <poppler-page-renderer.h>
#include <poppler-page.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "work.h"

namespace fax::pages {

namespace {

constexpr double kPointsAnInch = 72;

std::unique_ptr<poppler::document> opened() {
  poppler::set_debug_error_function([](std::string const &, void *) {}, nullptr);
  return std::unique_ptr<poppler::document>(poppler::document::load_from_file(path_of(3)));
}

int trouble_with(poppler::document const *document) {
  if (!document) return kBroken;
  if (document->is_locked()) return kLocked;
  return document->pages() > 0 ? kWell : kBroken;
}

// Pixels an inch at which the page just fits.
double resolution_of(poppler::page const &page, int width, int height) {
  poppler::rectf const box = page.page_rect();
  double wide = box.width();
  double high = box.height();
  auto const turned = page.orientation();
  if (turned == poppler::page::landscape || turned == poppler::page::seascape) std::swap(wide, high);
  if (!(wide > 0) || !(high > 0)) return 0;
  return kPointsAnInch * std::min(width / wide, height / high);
}

bool print(poppler::image const &image) {
  std::printf("%d %d\n", image.width(), image.height());
  std::size_t const row = static_cast<std::size_t>(image.width()) * 3;
  for (int at = 0; at < image.height(); ++at)
    std::fwrite(image.const_data() + static_cast<std::ptrdiff_t>(at) * image.bytes_per_row(), 1, row, stdout);
  return std::fflush(stdout) == 0;
}

}  // namespace

int count() {
  auto const document = opened();
  int const trouble = trouble_with(document.get());
  if (trouble == kWell) std::printf("%d\n", document->pages());
  return trouble;
}

int picture(int number, int width, int height) {
  auto const document = opened();
  if (int const trouble = trouble_with(document.get())) return trouble;
  if (number > document->pages()) return kNoSuchPage;
  std::unique_ptr<poppler::page> const page(document->create_page(number - 1));
  if (!page) return kBroken;
  double const resolution = resolution_of(*page, width, height);
  if (resolution <= 0) return kBroken;
  poppler::page_renderer renderer;
  renderer.set_render_hint(poppler::page_renderer::antialiasing, true);
  renderer.set_render_hint(poppler::page_renderer::text_antialiasing, true);
  renderer.set_image_format(poppler::image::format_rgb24);
  poppler::image const image = renderer.render_page(page.get(), resolution, resolution);
  if (!image.is_valid()) return kBroken;
  return print(image) ? kWell : kNotWritten;
}

}  // namespace fax::pages
