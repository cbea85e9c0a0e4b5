// The key views of a collection: CKeys walks the sorted key records from record 0 and hands
// out a new cKey for each, used or not, so a list without keys yields one empty name.
#include "model/collection_keys.h"

#include "model/live_collections.h"
#include "model/super_collection.h"

namespace qv {

namespace {
class KeysEnumerator : public Enumerator {
 public:
  KeysEnumerator(const CSuperCollection* collection, LiveTicket ticket, size_t at)
      : collection_(collection), ticket_(ticket), at_(at) {}

  bool Next(Variant& item) override {
    const CSuperCollection* live = MValidatePointer::Find(collection_, ticket_);
    if (!live) return false;
    const std::vector<KeyRecord>& records = live->KeyRecords();
    if (at_ >= records.size()) return false;
    const KeyRecord& record = records[at_++];
    item = Variant(MakeRef<cKey>(record.Key, record.Index));
    return true;
  }
  void Skip(uint32_t count) override { at_ += count; }
  void Reset() override { at_ = 0; }
  Ref<Enumerator> Clone() override { return MakeRef<KeysEnumerator>(collection_, ticket_, at_); }

 private:
  const CSuperCollection* collection_;
  LiveTicket ticket_;
  size_t at_;
};
}  // namespace

const DispatchTable<cKey>& cKey::Table() {
  static const auto table = DispatchTable<cKey>(u"cKey")
                                .Property<&cKey::Name>(u"Name")
                                .Property<&cKey::AssociatedIndex>(u"AssociatedIndex")
                                .Default(u"Name");
  return table;
}

CKeys::CKeys(CSuperCollection& collection)
    : collection_(&collection), ticket_(collection.Ticket()) {}

CSuperCollection* CKeys::Live() const {
  return MValidatePointer::Find(collection_, ticket_);
}

int32_t CKeys::Count() const {
  const CSuperCollection* live = Live();
  if (!live) return 0;
  const std::vector<KeyRecord>& records = live->KeyRecords();
  if (records.size() == 1 && !records[0].Used) return 0;
  return static_cast<int32_t>(records.size());
}

Ref<Enumerator> CKeys::NewEnum() {
  return MakeRef<KeysEnumerator>(collection_, ticket_, 0);
}

const DispatchTable<CKeys>& CKeys::Table() {
  static const auto table = DispatchTable<CKeys>(u"CKeys").Property<&CKeys::Count>(u"Count");
  return table;
}

}  // namespace qv
