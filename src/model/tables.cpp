// The table list's operations. Delete, Item and Seq swallow failures of their steps, as the
// hosts expect: a bad sequence value in one table must not stop a lookup of another.
#include "model/tables.h"

#include "support/tyx_functions.h"

namespace qv {

bool TyxTables::Add(StringView name) {
  if (name.empty() || list_.HasKey(name)) return false;
  list_.Append(name);
  return true;
}

bool TyxTables::Change(StringView old_name, StringView new_name) {
  TyxTable* table = list_.Rename(old_name, new_name);
  if (!table) return false;
  table->SetTblVar(ToVarName(new_name, u""));
  list_.MakeCurrent(*table);
  return true;
}

bool TyxTables::Delete(StringView name) {
  try {
    return list_.DeleteAndRenumber(name);
  } catch (const Error&) {
    return false;
  }
}

bool TyxTables::TableExist(const Variant& index) const {
  const String name = ToString(index);
  bool found = false;
  list_.ForEach([&](TyxTable& f) {
    if (!found && f.TblName() == name) found = true;
  });
  return found;
}

Ref<TyxTable> TyxTables::Item(const Variant& index) {
  try {
    TyxTable* table = list_.ByIndex(index);
    if (table) list_.MakeCurrent(*table);
    return Ref<TyxTable>(table);
  } catch (const Error&) {
    return nullptr;
  }
}

Ref<TyxTable> TyxTables::Seq(int16_t seq) const {
  try {
    return Ref<TyxTable>(list_.BySeq(seq));
  } catch (const Error&) {
    return nullptr;
  }
}

void TyxTables::SetItem(const Variant& index) {
  if (TyxTable* table = list_.ByName(ToString(index))) list_.MakeCurrent(*table);
}

void TyxTables::SetSeq(int16_t seq) {
  if (TyxTable* table = list_.BySeq(seq)) list_.MakeCurrent(*table);
}

const DispatchTable<TyxTables>& TyxTables::Table() {
  using L = TyxTables;
  static const auto table =
      DispatchTable<L>(u"TyxTables")
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
          .Method(u"TableExist",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.TableExist(a[0]));
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
