// The root's object interface: its own members and the entry points forwarded to the
// services. Settings answer by name through the bag (BagObject).
#include <optional>

#include "automation/convert.h"
#include "model/tyx.h"

namespace qv {

namespace {

// An entry point that the services implement: the script's arguments follow the root.
template <auto Fn>
struct Forward;
template <class R, class... P, R (TyxServices::*Fn)(Tyx&, P...)>
struct Forward<Fn> {
  static R Call(Tyx& t, P... args) { return (t.Services().*Fn)(t, args...); }
};

}  // namespace

const DispatchTable<Tyx>& Tyx::Table() {
  using T = Tyx;
  using S = TyxServices;
  static const auto table =
      DispatchTable<T>(u"Tyx")
          .Field<&T::lhWnd>(u"lhWnd")
          .Property<&T::hwnd, &T::set_hwnd>(u"hwnd")
          .Property<&T::ProjInit>(u"ProjInit")
          .Property<&T::db>(u"db")
          .Property<&T::DBCnt>(u"DBCnt")
          .Property<&T::Properties>(u"Properties")
          .Property<&T::Extensions>(u"Extensions")
          .Property<&T::ProjErr, &T::SetProjErr>(u"ProjErr")
          .Property<&T::EngineVersion>(u"EngineVersion")
          .Property<[](T& t) { return t.CurTable; }, nullptr,
                    [](T& t, Ref<TyxTable> v) { t.CurTable = v; }>(u"CurTable")
          .Property<[](T& t) { return t.CurField; }, nullptr,
                    [](T& t, Ref<TyxField> v) { t.CurField = v; }>(u"CurField")
          .Method<&T::AddProj>(u"AddProj")
          .Method<&T::DeleteProj>(u"DeleteProj")
          .Method<&T::AddExtension>(u"AddExtension")
          .Method<&T::DeleteExtension>(u"DeleteExtension")
          .Method<&T::Load>(u"Load")
          .Method<&T::Save>(u"Save")
          .Method<&T::LoadDefault>(u"LoadDefault")
          .Method<&T::SaveDefault>(u"SaveDefault")
          .Method(u"LoadDB",
                  [](T& t, Args a) {
                    CheckArgCount(a, 9, 9);  // each by reference: the loader may write back
                    t.Services().LoadDB(t, a);
                    return Variant();
                  })
          .Method<&Forward<&S::LoadTable>::Call>(u"LoadTable")
          .Method<&Forward<&S::UnLoadTable>::Call>(u"UnLoadTable")
          .Method<&Forward<&S::UnLoadDB>::Call>(u"UnLoadDB")
          .Method<&Forward<&S::CustomViewConnStr>::Call>(u"CustomViewConnStr")
          .Method<[](T& t, const Variant& name, const Variant& sql, std::optional<Variant> copy) {
            t.Services().LoadCustomView(t, name, sql, copy.value_or(Variant::Missing()));
          }>(u"LoadCustomView")
          .Method<&Forward<&S::LoadReport>::Call>(u"LoadReport")
          .Method<&Forward<&S::CheckDB>::Call>(u"CheckDB")
          .Method<&Forward<&S::SynchronizeDB>::Call>(u"SynchronizeDB")
          .Method<&Forward<&S::SyncCustom>::Call>(u"SyncCustom")
          .Method<&Forward<&S::SyncReport>::Call>(u"SyncReport")
          .Method<&Forward<&S::SyncProperties>::Call>(u"SyncProperties")
          .Method<&Forward<&S::Parse>::Call>(u"Parse")
          .Method<&Forward<&S::FldSrchOprs>::Call>(u"FldSrchOprs")
          .Method<&Forward<&S::GenCheck>::Call>(u"GenCheck")
          .Method<&Forward<&S::GenScript>::Call>(u"GenScript")
          .Parameterless({u"db", u"Properties", u"Extensions"});
  return table;
}

}  // namespace qv
