// The umbrella that brings Core Printing; see PrintCore/PrintCore.h.
#pragma once
#include <PrintCore/PrintCore.h>
