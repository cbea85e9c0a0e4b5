// RootServices: the facade's implementation of the root's entry points, each delegating to
// the subsystem that owns it. Entries not listed here still raise "not available".
#pragma once

#include "model/tyx_services.h"

namespace qv {

class RootServices : public TyxServices {
 public:
  void LoadDefault(Tyx& tyx) override;
  void SaveDefault(Tyx& tyx) override;
};

}  // namespace qv
