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
  static const auto table =
      DispatchTable<F>(u"TyxField")
          .Property(u"Properties",
                    [](F& f, Args) { return Variant(Ref<TyProperties>(&f.Properties())); })
          .Property(
              u"Key", [](F& f, Args) { return Variant(f.Key()); },
              [](F& f, Args, const Variant& v) { f.SetKey(ToString(v)); })
          .Method(u"LoadFldDefault",
                  [](F& f, Args) {
                    f.LoadFldDefault();
                    return Variant();
                  })
          .Parameterless({u"Properties"});
  return table;
}

}  // namespace qv
