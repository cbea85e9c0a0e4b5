// TyxDatabases: the project's list of databases, which by design holds at most one entry.
// Failures of Add are told through ProjErr only.
#pragma once

#include "model/database.h"

namespace qv {

class TyxDatabases : public DispatchObject<TyxDatabases> {
 public:
  TyxDatabases();
  static const DispatchTable<TyxDatabases>& Table();

  const String& curName() const { return cur_name_; }
  String curSeq() const;
  // With no database: empties ProjErr, creates one under `name` and makes it current. With
  // one present: ProjErr "support 1 db only!" and nothing else.
  void Add(StringView name);
  int32_t Count() const { return collection_->Count(); }
  // Removes the entry; an unknown key raises "Key not found." from the collection.
  void Delete(const Variant& index);
  // A hit becomes current; a miss raises 424.
  Ref<TyxDatabase> Item(const Variant& index);
  Ref<Enumerator> NewEnum() override { return collection_->NewEnum(); }
  // The database under a key, or nullptr; the current entry stays.
  TyxDatabase* Find(StringView name) const;
  CSuperCollection& collection() const { return *collection_; }

 private:
  Ref<CSuperCollection> collection_;
  String cur_name_;
  int32_t cur_position_ = 0;
};

}  // namespace qv
