#include "plugin/ppd_choices.h"

#include <cstring>

namespace fax {

ppd_choice_t *initial_choice(ppd_option_t &option) {
  std::size_t const length = std::strlen(option.defchoice);
  ppd_choice_t *current = nullptr;
  for (int i = 0; i < option.num_choices; i++) {
    ppd_choice_t &choice = option.choices[i];
    if (choice.marked) return &choice;
    if (std::strncmp(choice.choice, option.defchoice, length) == 0) current = &choice;
  }
  return current;
}

ppd_choice_t *default_choice(ppd_option_t &option) {
  for (int i = 0; i < option.num_choices; i++)
    if (std::strcmp(option.choices[i].choice, option.defchoice) == 0) return &option.choices[i];
  return nullptr;
}

ppd_group_t *find_group(ppd_file_t *ppd, char const *name) {
  if (ppd == nullptr) return nullptr;
  for (int i = 0; i < ppd->num_groups; i++)
    if (std::strcmp(ppd->groups[i].name, name) == 0) return &ppd->groups[i];
  return nullptr;
}

}  // namespace fax
