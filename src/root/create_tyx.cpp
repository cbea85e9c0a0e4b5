// The creation steps of the root, in their order.
#include "root/create_tyx.h"

#include <memory>

#include "automation/convert.h"
#include "persistence/saved_defaults.h"
#include "root/root_services.h"
#include "script/system_library.h"
#include "support/common.h"
#include "support/registry.h"
#include "support/tyx_vars.h"

namespace qv {

Ref<Tyx> CreateTyx() {
  Ref<Tyx> tyx = MakeRef<Tyx>();  // step 1: the settings are registered
  tyx->SetServices(std::make_shared<RootServices>());
  tyx->PrepareRoot();  // steps 2 to 7
  InstallSystemLibrary();
  // A first run is told by the user's own tree: ReadRegValue would answer from the shipped one.
  cRegistry user;
  user.ClassKey = kHkeyCurrentUser;
  user.SectionKey = Vars().SettingsKey;
  user.ValueKey = u"Language";
  const Variant language = user.Value();
  if (language.is_empty() || ToString(language).empty()) SeedUserRegistry();
  tyx->LoadDefault();
  return tyx;
}

}  // namespace qv
