// The database list's operations and object interface.
#include "model/databases.h"

#include "model/named_list.h"

#include "support/tyx_vars.h"

namespace qv {

TyxDatabases::TyxDatabases() : collection_(MakeRef<CSuperCollection>()) {
  collection_->SetCompareMode(1);
}

String TyxDatabases::curSeq() const {
  return NumberText(cur_position_);
}

void TyxDatabases::Add(StringView name) {
  if (Count() >= 1) {
    Vars().ProjErr = u"support 1 db only!";
    return;
  }
  Vars().ProjErr = String();
  Ref<TyxDatabase> db = MakeRef<TyxDatabase>();
  db->SetDBName(String(name));
  collection_->Add(Variant(db), name);
  cur_name_ = String(name);
  cur_position_ = collection_->LastPosition();
}

void TyxDatabases::Delete(const Variant& index) {
  collection_->Remove(index);
}

TyxDatabase* TyxDatabases::Find(StringView name) const {
  const Variant* v = collection_->SlotValue(collection_->FindSlot(name));
  return v && v->is_object() ? static_cast<TyxDatabase*>(v->as_object()) : nullptr;
}

Ref<TyxDatabase> TyxDatabases::Item(const Variant& index) {
  const Variant v = collection_->Item(index);
  if (!v.is_object() || !v.as_object()) throw Error(kErrObjectRequired);
  Ref<TyxDatabase> db(static_cast<TyxDatabase*>(v.as_object()));
  cur_name_ = db->DBName();
  cur_position_ = collection_->KeyExists(db->DBName());
  if (cur_position_ == NoEntry) cur_position_ = 0;
  return db;
}

const DispatchTable<TyxDatabases>& TyxDatabases::Table() {
  using L = TyxDatabases;
  static const auto table =
      ListMembers<L>(u"TyxDatabases").Method<&L::Add>(u"Add").Method<&L::Delete>(u"Delete");
  return table;
}

}  // namespace qv
