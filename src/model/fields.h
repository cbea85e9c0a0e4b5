// TyxFields: the fields of one table, with a current field. Lookups by name compare exactly;
// the order a user sees is FldSeq, which Seq(1..Count) walks, never the list's own order.
#pragma once

#include "model/field.h"
#include "model/named_list.h"

namespace qv {

class TyxFields final : public TyxList<TyxFields, TyxField, kFieldListRules> {};

}  // namespace qv
