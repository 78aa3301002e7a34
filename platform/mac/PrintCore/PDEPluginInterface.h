// Where macOS keeps the protocols of print dialog extensions: in PrintCore, or in the Print framework within Carbon.
#pragma once
#if __has_include_next(<PrintCore/PDEPluginInterface.h>)
#include_next <PrintCore/PDEPluginInterface.h>
#else
#import <Print/PDEPluginInterface.h>
#endif
