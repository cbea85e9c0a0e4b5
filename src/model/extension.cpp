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
  static const auto table =
      DispatchTable<E>(u"TyxExtension")
          .Property(u"Properties",
                    [](E& e, Args) { return Variant(Ref<TyProperties>(&e.Properties())); })
          .Property(
              u"Key", [](E& e, Args) { return Variant(e.Key()); },
              [](E& e, Args, const Variant& v) { e.SetKey(ToString(v)); })
          .Parameterless({u"Properties"});
  return table;
}

}  // namespace qv
