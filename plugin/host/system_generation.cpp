#include "plugin/host/system_generation.hpp"

#include "platform/core_foundation.hpp"

bool isCoverSheetSystem() { return kCFCoreFoundationVersionNumber > 1600.0; }
