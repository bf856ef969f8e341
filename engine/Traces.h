// Package start-up and shutdown: the units' initialisations in their fixed order.
#pragma once
#include "platform/WinTypes.h"

namespace tc {

// Runs every unit's initialisation once, in order (a second call does nothing).
void Initialize();
// Runs the finalisations in reverse order, once per earlier Initialize.
void Finalize();

struct TUnitInfo {
  const char16_t* Name;
  void (*Initialization)();
  void (*Finalization)();
};
// The units in start-up order (units whose plug-ins are not built yet have no routines).
const std::vector<TUnitInfo>& PackageUnits();
// The package's unit table, as the host framework's package convention asks for it.
inline const std::vector<TUnitInfo>& GetPackageInfoTable() { return PackageUnits(); }

}  // namespace tc
