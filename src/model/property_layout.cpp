// Builds a layout's shared descriptors and its prototype collection.
#include "model/property_layout.h"

namespace qv {

PropertyLayout::PropertyLayout(std::initializer_list<PropertySpec> specs)
    : prototype_(MakeRef<CSuperCollection>()) {
  prototype_->SetCompareMode(1);
  descriptors_.reserve(specs.size());
  for (const PropertySpec& spec : specs) {
    Ref<PropertyDescriptor> d = MakeRef<PropertyDescriptor>();
    d->Name = String(spec.name);
    d->DataType = String(spec.data_type);
    d->Type = PropTypeOf(d->DataType);
    d->RegSave = spec.reg_save;
    d->RegFormat = spec.reg_format;
    d->FileSave = spec.file_save;
    d->Sync = spec.sync;
    prototype_->Add(Variant(), d->Name);
    descriptors_.push_back(std::move(d));
  }
}

}  // namespace qv
