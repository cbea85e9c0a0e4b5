// A field's registration and its object interface.
#include "model/field.h"

namespace qv {

TyxField::TyxField() : properties_(MakeRef<TyProperties>()) {
  properties_->Register(Layout());
}

const PropertyLayout& TyxField::Layout() {
  static const PropertyLayout* layout = new PropertyLayout({QV_FIELD_PROPERTIES(QV_BAG_SPEC)});
  return *layout;
}

const DispatchTable<TyxField>& TyxField::Table() {
  using F = TyxField;
  static const auto table = DispatchTable<F>(u"TyxField")
                                .Property<&F::Properties>(u"Properties")
                                .Property<&F::Key, &F::SetKey>(u"Key")
                                .Method<&F::LoadFldDefault>(u"LoadFldDefault")
                                .Parameterless({u"Properties"});
  return table;
}

}  // namespace qv
