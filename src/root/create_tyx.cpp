// The creation steps of the root, in their order.
#include "root/create_tyx.h"

#include <memory>

#include "automation/convert.h"
#include "persistence/saved_defaults.h"
#include "root/root_services.h"
#include "script/system_library.h"
#include "support/common.h"
#include "support/tyx_vars.h"

namespace qv {

Ref<Tyx> CreateTyx() {
  Ref<Tyx> tyx = MakeRef<Tyx>();  // step 1: the settings are registered
  tyx->SetServices(std::make_shared<RootServices>());
  tyx->PrepareRoot();  // steps 2 to 7
  InstallSystemLibrary();
  const TyxVars& vars = Vars();
  const Variant language = ReadRegValue(u"HKCU", vars.SettingsKey, u"Language");
  if (language.is_empty() || ToString(language).empty()) SeedUserRegistry();  // first run
  tyx->LoadDefault();
  return tyx;
}

}  // namespace qv
