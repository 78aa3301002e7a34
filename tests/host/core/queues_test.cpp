#include "host/core/queues.h"

#include <gmock/gmock.h>

namespace fax::host {
namespace {

using testing::HasSubstr;

Queue queue(std::string name, bool is_default = false) {
  Queue made;
  made.name = std::move(name);
  made.is_default = is_default;
  return made;
}

TEST(ChooseQueue, ByNameDefaultOrOnlyOne) {
  std::vector<Queue> const several{queue("office"), queue("fax", true), queue("lab")};
  EXPECT_EQ(choose_queue(several, "lab").value().name, "lab");
  EXPECT_EQ(choose_queue(several, std::nullopt).value().name, "fax");
  EXPECT_EQ(choose_queue({queue("only")}, std::nullopt).value().name, "only");
}

TEST(ChooseQueue, RefusalsOfferWhatThereIs) {
  std::vector<Queue> const several{queue("office-fax"), queue("lab")};
  auto const close = choose_queue(several, "Office_Fax").failure();
  EXPECT_EQ(close.code, ExitCode::queue);
  EXPECT_EQ(close.text(), "There is no print queue \"Office_Fax\". Did you mean \"office-fax\"?");
  EXPECT_EQ(choose_queue(several, "zebra").failure().advice, "The queues are: \"office-fax\", \"lab\".");
  EXPECT_THAT(choose_queue(several, std::nullopt).failure().text(), HasSubstr("--printer"));
  EXPECT_THAT(choose_queue({}, "fax").failure().what, HasSubstr("has no print queues"));
}

TEST(ChooseQueue, BeginsWithTheLikeliest) {
  Queue faxes = queue("faxes");
  faxes.fax_capable = true;
  struct Case {
    std::vector<Queue> queues;
    std::string last, expected;
  };
  Case const cases[] = {
      {{queue("a"), queue("b", true), faxes}, "a", "a"}, {{queue("a"), queue("b", true), faxes}, "gone", "b"},
      {{queue("a"), faxes, queue("b")}, "", "faxes"},    {{queue("a"), queue("b")}, "", "a"},
  };
  for (Case const &one : cases) EXPECT_EQ(queue_to_begin_with(one.queues, one.last).value().name, one.expected);
  EXPECT_EQ(queue_to_begin_with({}, "a").failure().code, ExitCode::queue);
}

TEST(QueueTable, OneLineEach) {
  Queue fax = queue("fax", true);
  fax.info = "Fax in the hall";
  fax.location = "Hall";
  fax.fax_capable = true;
  fax.state = QueueState::stopped;
  fax.accepts_jobs = false;
  EXPECT_EQ(queue_table({fax, queue("office")}),
            "fax     Fax in the hall, Hall (default, fax, stopped, rejects jobs)\n"
            "office  office\n");
  EXPECT_THAT(queue_table({}), HasSubstr("no print queues"));
}

}  // namespace
}  // namespace fax::host
