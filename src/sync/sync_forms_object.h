// TyxSyncForms: the questions of synchronisation as one object a host script can create, so
// that a host asks them the way the synchronisation does (through the process's prompter: a
// terminal, the answers given on the command line, or the safe choice). Each method is named
// after the form it shows and gives back what that form leaves.
//
//   Set forms = CreateObject("TyxClass.TyxSyncForms")
//   old = forms.frmSyncSelectTable("Orders", "OldOrders,Orders2")   ' "" when skipped
#pragma once

#include "automation/dispatch.h"

namespace qv {

class TyxSyncForms : public DispatchObject<TyxSyncForms> {
 public:
  static const DispatchTable<TyxSyncForms>& Table();
};

}  // namespace qv
