// PPD data of tests: attributes only.
#pragma once

#include <cups/ppd.h>

#include <cstring>
#include <memory>
#include <vector>

class TestPpd {
 public:
  // name, then value; a value of NULL is an attribute without one.
  struct Attribute {
    char const *name;
    char const *value;
  };
  TestPpd(std::initializer_list<Attribute> attributes) {
    for (auto const &attribute : attributes) {
      auto &made = storage_.emplace_back(std::make_unique<ppd_attr_t>());
      std::strncpy(made->name, attribute.name, sizeof made->name - 1);
      made->value = const_cast<char *>(attribute.value);
      pointers_.push_back(made.get());
    }
    ppd_.num_attrs = static_cast<int>(pointers_.size());
    ppd_.attrs = pointers_.data();
  }
  TestPpd(TestPpd const &) = delete;
  ppd_file_t *get() { return &ppd_; }

 private:
  std::vector<std::unique_ptr<ppd_attr_t>> storage_;
  std::vector<ppd_attr_t *> pointers_;
  ppd_file_t ppd_{};
};
