// The one instance of the shared variables, and the version text it starts with.
#include "support/tyx_vars.h"

#include "support/registry.h"

namespace qv {

String EngineVersionText() {
  return NumberText(QV_VERSION_MAJOR) + u"." + NumberText(QV_VERSION_MINOR) + u"." +
         NumberText(QV_VERSION_PATCH) + u"." + NumberText(QV_VERSION_BUILD);
}

namespace {
TyxVars& Instance() {
  static TyxVars vars;
  return vars;
}
}  // namespace

TyxVars& Vars() {
  return Instance();
}

void ResetVars() {
  Instance() = TyxVars();
}

}  // namespace qv
