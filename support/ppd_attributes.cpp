#include "support/ppd_attributes.h"

#include <cstring>

ppd_attr_t *ppdFindAttr_ALT(ppd_file_t *ppd, char const *name, char const *) {
  if (ppd == nullptr || name == nullptr || *name == '\0') return nullptr;
  size_t const length = std::strlen(name);
  for (int i = 0; i < ppd->num_attrs; ++i)
    if (std::strncmp(ppd->attrs[i]->name, name, length) == 0) return ppd->attrs[i];
  return nullptr;
}

CFStringRef CopyPPDAttribute(ppd_file_t *ppd, char const *name) {
  if (ppd == nullptr) return nullptr;
  ppd_attr_t const *attribute = ppdFindAttr_ALT(ppd, name, nullptr);
  if (attribute == nullptr || attribute->value == nullptr) return nullptr;
  return CFStringCreateWithCString(kCFAllocatorDefault, attribute->value, kCFStringEncodingUTF8);
}
