// The field list's operations. Delete, Item and Seq swallow failures of their steps, as the
// hosts expect: a bad sequence value in one field must not stop a lookup of another.
#include "model/fields.h"

#include "support/tyx_functions.h"

namespace qv {

bool TyxFields::Add(StringView name) {
  if (name.empty() || list_.HasKey(name)) return false;
  list_.Append(name);
  return true;
}

bool TyxFields::Change(StringView old_name, StringView new_name) {
  TyxField* field = list_.Rename(old_name, new_name);
  if (!field) return false;
  field->SetFldVar(ToVarName(new_name, u"x_"));
  list_.MakeCurrent(*field);
  return true;
}

bool TyxFields::Delete(StringView name) {
  try {
    return list_.DeleteAndRenumber(name);
  } catch (const Error&) {
    return false;
  }
}

bool TyxFields::FieldExist(const Variant& index) const {
  const String name = ToString(index);
  bool found = false;
  list_.ForEach([&](TyxField& f) {
    if (!found && f.FldName() == name) found = true;
  });
  return found;
}

Ref<TyxField> TyxFields::Item(const Variant& index) {
  try {
    TyxField* field = list_.ByIndex(index);
    if (field) list_.MakeCurrent(*field);
    return Ref<TyxField>(field);
  } catch (const Error&) {
    return nullptr;
  }
}

Ref<TyxField> TyxFields::Seq(int16_t seq) const {
  try {
    return Ref<TyxField>(list_.BySeq(seq));
  } catch (const Error&) {
    return nullptr;
  }
}

void TyxFields::SetItem(const Variant& index) {
  if (TyxField* field = list_.ByName(ToString(index))) list_.MakeCurrent(*field);
}

void TyxFields::SetSeq(int16_t seq) {
  if (TyxField* field = list_.BySeq(seq)) list_.MakeCurrent(*field);
}

const DispatchTable<TyxFields>& TyxFields::Table() {
  using L = TyxFields;
  static const auto table =
      DispatchTable<L>(u"TyxFields")
          .Property(u"Item",
                    [](L& l, Args a) {
                      CheckArgCount(a, 1, 1);
                      return Variant(l.Item(a[0]));
                    })
          .Default(u"Item")
          .Property(u"curName", [](L& l, Args) { return Variant(l.curName()); })
          .Property(u"curSeq", [](L& l, Args) { return Variant(l.curSeq()); })
          .Property(u"Count", [](L& l, Args) { return Variant(l.Count()); })
          .Method(u"Add",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Add(ToString(a[0])));
                  })
          .Method(u"Change",
                  [](L& l, Args a) {
                    CheckArgCount(a, 2, 2);
                    return Variant(l.Change(ToString(a[0]), ToString(a[1])));
                  })
          .Method(u"Delete",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Delete(ToString(a[0])));
                  })
          .Method(u"FieldExist",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.FieldExist(a[0]));
                  })
          .Method(u"Seq",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Seq(ToInteger(a[0])));
                  })
          .Method(u"SetItem",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    l.SetItem(a[0]);
                    return Variant();
                  })
          .Method(u"SetSeq", [](L& l, Args a) {
            CheckArgCount(a, 1, 1);
            l.SetSeq(ToInteger(a[0]));
            return Variant();
          });
  return table;
}

}  // namespace qv
