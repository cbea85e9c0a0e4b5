// The extension list's operations and object interface.
#include "model/extensions.h"

namespace qv {

bool TyxExtensions::Add(StringView name) {
  if (name.empty()) return false;
  if (TyxExtension* existing = list_.ByKey(name)) {
    list_.MakeCurrent(*existing);
    return true;
  }
  list_.Append(name);
  return true;
}

bool TyxExtensions::Delete(StringView name) {
  try {
    return list_.DeleteAndRenumber(name);
  } catch (const Error&) {
    return false;
  }
}

bool TyxExtensions::ExtensionExist(const Variant& index) const {
  const String name = ToString(index);
  bool found = false;
  list_.ForEach([&](TyxExtension& e) {
    if (!found && e.Name() == name) found = true;
  });
  return found;
}

Ref<TyxExtension> TyxExtensions::Item(const Variant& index) {
  try {
    TyxExtension* e = list_.ByIndex(index);
    if (e) list_.MakeCurrent(*e);
    return Ref<TyxExtension>(e);
  } catch (const Error&) {
    return nullptr;
  }
}

Ref<TyxExtension> TyxExtensions::Seq(int16_t seq) const {
  try {
    return Ref<TyxExtension>(list_.BySeq(seq));
  } catch (const Error&) {
    return nullptr;
  }
}

const DispatchTable<TyxExtensions>& TyxExtensions::Table() {
  using L = TyxExtensions;
  static const auto table =
      DispatchTable<L>(u"TyxExtensions")
          .Property(u"Item",
                    [](L& l, Args a) {
                      CheckArgCount(a, 1, 1);
                      return Variant(l.Item(a[0]));
                    })
          .Default(u"Item")
          .Property(u"curName", [](L& l, Args) { return Variant(l.curName()); })
          .Property(u"curSeq", [](L& l, Args) { return Variant(l.curSeq()); })
          .Property(u"Count", [](L& l, Args) { return Variant(l.Count()); })
          .Method(u"Add",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Add(ToString(a[0])));
                  })
          .Method(u"Delete",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Delete(ToString(a[0])));
                  })
          .Method(u"ExtensionExist",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.ExtensionExist(a[0]));
                  })
          .Method(u"Seq", [](L& l, Args a) {
            CheckArgCount(a, 1, 1);
            return Variant(l.Seq(ToInteger(a[0])));
          });
  return table;
}

}  // namespace qv
