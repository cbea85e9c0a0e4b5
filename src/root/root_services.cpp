// Entry points of the root, wired to their subsystems.
#include "root/root_services.h"

#include "persistence/saved_defaults.h"

namespace qv {

void RootServices::LoadDefault(Tyx& tyx) {
  qv::LoadDefault(tyx);
}

void RootServices::SaveDefault(Tyx& tyx) {
  qv::SaveDefault(tyx);
}

}  // namespace qv
