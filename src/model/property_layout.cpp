// Builds a layout's shared descriptors and its prototype collection.
#include "model/property_layout.h"

namespace qv {

PropertyLayout::PropertyLayout(std::initializer_list<PropertyEntry> entries)
    : prototype_(MakeRef<CSuperCollection>()) {
  prototype_->SetCompareMode(1);
  descriptors_.reserve(entries.size());
  for (const PropertyEntry& entry : entries) {
    Ref<PropertyDescriptor> d = MakeRef<PropertyDescriptor>();
    d->Name = String(entry.name);
    d->DataType = String(entry.data_type);
    d->Type = PropTypeOf(d->DataType);
    d->RegSave = entry.reg_save;
    d->RegFormat = entry.reg_format;
    d->FileSave = entry.file_save;
    d->Sync = entry.sync;
    prototype_->Add(Variant(), d->Name);
    descriptors_.push_back(std::move(d));
  }
}

}  // namespace qv
