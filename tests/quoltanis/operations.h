// The address-book library as programs meet it: opened by its path, its operations found by name.
#pragma once
#include "quoltanis/QUOLTANIS.h"

#include <dlfcn.h>

namespace fax {

// nullptr when it cannot be opened; dlerror() says why.
inline void *library() {
  static void *const opened = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL);
  return opened;
}

#define OPERATION(name) decltype(&::name) const name = reinterpret_cast<decltype(&::name)>(dlsym(library(), #name))

struct Operations {
  OPERATION(Abif_Initialize);
  OPERATION(AbifDevice_SetDestinationDevice);
  OPERATION(AbifDevice_GetStatus);
  OPERATION(AbifDevice_ReadData);
  OPERATION(AbifGADFile_GetFileDirectory);
  OPERATION(AbifGADFile_GetFileList);
  OPERATION(AbifGADFile_Read);
  OPERATION(AbifGADFile_Add);
  OPERATION(ABIFData_Create);
  OPERATION(ABIFData_Delete);
  OPERATION(ABIFData_GetCount_MyFax);
  OPERATION(ABIFData_GetCount_MyFaxGroup);
  OPERATION(ABIFData_GetCount_Contact);
  OPERATION(ABIFData_GetCount_FaxGroup);
  OPERATION(ABIFData_GetAt_MyFax);
  OPERATION(ABIFData_GetAt_MyFaxGroup);
  OPERATION(ABIFData_GetAt_Contact);
  OPERATION(ABIFData_GetAt_FaxGroup);
  OPERATION(ABIFData_Add_MyFax);
};
#undef OPERATION

}  // namespace fax
