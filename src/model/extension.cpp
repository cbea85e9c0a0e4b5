// An extension's registration and object interface.
#include "model/extension.h"

namespace qv {

TyxExtension::TyxExtension() : properties_(MakeRef<TyProperties>()) {
  properties_->Register(Layout());
}

const PropertyLayout& TyxExtension::Layout() {
  static const PropertyLayout* layout = new PropertyLayout({QV_EXTENSION_PROPERTIES(QV_BAG_SPEC)});
  return *layout;
}

const DispatchTable<TyxExtension>& TyxExtension::Table() {
  using E = TyxExtension;
  static const auto table = DispatchTable<E>(u"TyxExtension")
                                .Property<&E::Properties>(u"Properties")
                                .Property<&E::Key, &E::SetKey>(u"Key")
                                .Parameterless({u"Properties"});
  return table;
}

}  // namespace qv
