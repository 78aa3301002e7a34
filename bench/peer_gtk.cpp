// GTK's filter over its sorted list over a list store. The order compares keys that were folded once when the rows were
// made: faster than its string sorter, and from Z to A, which that does not do.
#include "bench/generated_book.h"
#include "bench/peers.h"

#include <gtk/gtk.h>

#include <cstring>

namespace {

constexpr guint kFields = 4;

struct Person {
  GObject parent;
  char *fields[kFields];  // name, number, company, note
  char *key;
};
struct PersonClass {
  GObjectClass parent;
};
G_DEFINE_TYPE(Person, person, G_TYPE_OBJECT)

void get_field(GObject *object, guint field, GValue *value, GParamSpec *) {
  g_value_set_string(value, reinterpret_cast<Person *>(object)->fields[field - 1]);
}

void finalize(GObject *object) {
  auto *const person = reinterpret_cast<Person *>(object);
  for (char *const field : person->fields) g_free(field);
  g_free(person->key);
  G_OBJECT_CLASS(person_parent_class)->finalize(object);
}

void person_class_init(PersonClass *type) {
  GObjectClass *const object = G_OBJECT_CLASS(type);
  object->get_property = get_field;
  object->finalize = finalize;
  char const *const names[kFields] = {"name", "number", "company", "note"};
  for (guint at = 0; at < kFields; ++at) {
    g_object_class_install_property(object, at + 1,
                                    g_param_spec_string(names[at], names[at], names[at], nullptr, G_PARAM_READABLE));
  }
}

void person_init(Person *) {}

char *folded_key(Person const *person) {
  char *const name = g_utf8_casefold(person->fields[0], -1), *const number = g_utf8_casefold(person->fields[1], -1);
  char *const key = g_strconcat(name, "\1", number, nullptr);
  g_free(name);
  g_free(number);
  return key;
}

int from_z_to_a(gconstpointer left, gconstpointer right, gpointer) {
  return std::strcmp(static_cast<Person const *>(right)->key, static_cast<Person const *>(left)->key);
}

}  // namespace

namespace fax::bench {

namespace {

class GtkModel final : public Model {
 public:
  ~GtkModel() override {
    if (shown_ != nullptr) g_object_unref(shown_);
    g_object_unref(store_);
  }
  void read(std::string const &path) override {
    std::vector<gpointer> people;
    for_each_person(path, [&people](PersonView const &given) {
      auto *const person = static_cast<Person *>(g_object_new(person_get_type(), nullptr));
      for (std::size_t at = 0; at < given.size(); ++at) person->fields[at] = g_strndup(given[at].data(), given[at].size());
      person->key = folded_key(person);
      people.push_back(person);
    });
    g_list_store_splice(store_, 0, 0, people.data(), static_cast<guint>(people.size()));
    for (gpointer const person : people) g_object_unref(person);
  }
  void sort() override {
    GListModel *const people = G_LIST_MODEL(g_object_ref(store_));
    GtkSorter *const order = GTK_SORTER(gtk_custom_sorter_new(from_z_to_a, nullptr, nullptr));
    GListModel *const sorted = G_LIST_MODEL(gtk_sort_list_model_new(people, order));
    filter_ = gtk_string_filter_new(gtk_property_expression_new(person_get_type(), nullptr, "name"));
    gtk_string_filter_set_ignore_case(filter_, TRUE);
    gtk_string_filter_set_match_mode(filter_, GTK_STRING_FILTER_MATCH_MODE_SUBSTRING);
    shown_ = G_LIST_MODEL(gtk_filter_list_model_new(sorted, GTK_FILTER(filter_)));
  }
  std::size_t search(std::string const &text) override {
    gtk_string_filter_set_search(filter_, text.c_str());
    guint const found = g_list_model_get_n_items(shown_);
    for (guint row = 0; row < found && row < kShownRows; ++row) {
      gpointer const person = g_list_model_get_item(shown_, row);
      char *name = nullptr, *number = nullptr;
      g_object_get(person, "name", &name, "number", &number, nullptr);
      g_free(name);
      g_free(number);
      g_object_unref(person);
    }
    return found;
  }

 private:
  GListStore *store_ = g_list_store_new(person_get_type());
  GListModel *shown_ = nullptr;
  GtkStringFilter *filter_ = nullptr;  // of shown_
};

Entered const model(ModelMaker{"GTK 4", [] { return std::make_unique<GtkModel>(); }});

}  // namespace

}  // namespace fax::bench
