// The map of the screen: labels and the file.
#include "host/ui_map.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace fax::host {
namespace {

MapControl label(char const *text, MapFrame frame) {
  MapControl made;
  made.kind = "NSTextField";
  made.value = text;
  made.label = true;
  made.frame = frame;
  return made;
}

MapControl field(MapFrame frame) {
  MapControl made;
  made.kind = "NSTextField";
  made.frame = frame;
  return made;
}

TEST(Labels, NameTheControlBesideOrBelow) {
  MapWindow window;
  window.controls = {label("Name:", {10, 12, 60, 18}),        field({80, 10, 100, 24}),
                     label("Number:", {200, 12, 60, 18}),     field({270, 10, 100, 24}),
                     label("Destinations:", {10, 50, 90, 18}), field({10, 72, 300, 100}),
                     field({10, 400, 100, 24})};
  name_by_labels(window);
  EXPECT_EQ(window.controls[1].title, "Name");
  EXPECT_EQ(window.controls[3].title, "Number");
  EXPECT_EQ(window.controls[5].title, "Destinations");
  EXPECT_EQ(window.controls[6].title, "");
  EXPECT_EQ(window.controls[0].title, "");
}

TEST(File, IsRewrittenOnlyWhenSomethingChanged) {
  auto const folder = std::filesystem::path{testing::TempDir()} / "map";
  std::filesystem::create_directories(folder);
  MapFile file{folder / "map.json"};
  MapWindow window;
  window.title = "Print \"a\xFF\"";
  window.frame = {1, 2, 3, 4};
  window.controls = {field({5, 6, 7, 8})};
  auto const read = [&] {
    std::ifstream in{folder / "map.json"};
    return nlohmann::json::parse(in);
  };
  ASSERT_TRUE(file.update({window}));
  ASSERT_TRUE(file.update({window}));
  EXPECT_EQ(read()["sequence"], 1);
  EXPECT_EQ(read()["windows"][0]["title"], "Print \"a\uFFFD\"");
  EXPECT_EQ(read()["windows"][0]["controls"][0]["frame"], (nlohmann::json{5, 6, 7, 8}));
  window.key = true;
  ASSERT_TRUE(file.update({window}));
  EXPECT_EQ(read()["sequence"], 2);
  int files = 0;
  for (auto const &entry : std::filesystem::directory_iterator{folder}) files += entry.exists();
  EXPECT_EQ(files, 1);
  std::filesystem::remove_all(folder);
  window.key = false;
  EXPECT_FALSE(file.update({window}));
}

}  // namespace
}  // namespace fax::host
