// CKeys and cKey: the keys of a CSuperCollection as an iterable list, in sorted order. A view
// looks its collection up in MValidatePointer before every step.
#pragma once

#include <cstdint>

#include "automation/dispatch.h"
#include "model/live_collections.h"

namespace qv {

class CSuperCollection;

// One key and the position of its item; both read-only.
class cKey : public DispatchObject<cKey> {
 public:
  cKey(String name, int32_t associated_index)
      : name_(std::move(name)), associated_index_(associated_index) {}
  static const DispatchTable<cKey>& Table();
  const String& Name() const { return name_; }
  int32_t AssociatedIndex() const { return associated_index_; }

 private:
  String name_;
  int32_t associated_index_;
};

class CKeys : public DispatchObject<CKeys> {
 public:
  explicit CKeys(CSuperCollection& collection);
  static const DispatchTable<CKeys>& Table();
  // 0 when the collection holds no key (or is gone), otherwise the number of key records.
  int32_t Count() const;
  // Yields a cKey for every key record from record 0, used or not.
  Ref<Enumerator> NewEnum() override;

 private:
  CSuperCollection* Live() const;

  const CSuperCollection* collection_;
  LiveTicket ticket_;
};

}  // namespace qv
