// TyxControls: a loaded control file, the ordered list of controls a generation run works
// through, with the package's date, version, description and author. Scripts see it as
// `Controls`; extensions add and delete controls by CtrlID (compared exactly).
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"
#include "templates/control.h"

namespace qv {

class TyxControls : public DispatchObject<TyxControls> {
 public:
  TyxControls() : items_(1) {}
  static const DispatchTable<TyxControls>& Table();
  Ref<Enumerator> NewEnum() override;

  // Loads the control file at `path`. False with ProjErr set when the file is no XML (the list
  // stays) or its root is not named for the product (the list is left empty). Raises 94 for a
  // missing root attribute and passes on the errors of TyxControl::Load.
  bool LoadControls(StringView path);
  // Appends a copy of `control` (all but CtrlGen) with its sessions, and first stamps the
  // control's CtrlExt into each of the given sessions. False when the CtrlID exists.
  bool AddControl(TyxControl& control);
  bool DeleteControl(StringView id);
  bool ControlExist(StringView id) const;
  int32_t Count() const { return count_; }
  // The control at a 1-based index, which becomes curIndex; nothing outside 1..Count.
  Ref<TyxControl> Item(int32_t index);
  int16_t curIndex() const { return cur_index_; }

  String ProdDate;
  String ProdVersion;
  String ProdDesc;
  String ProdAuthor;

 private:
  int32_t Find(StringView id) const;  // 0 when absent
  void Append(Ref<TyxControl> control);

  int16_t count_ = 0;
  int16_t cur_index_ = 0;
  std::vector<Ref<TyxControl>> items_;  // slot 0 stays empty
};

}  // namespace qv
