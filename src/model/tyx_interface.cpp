// The root's object interface: its own members and the entry points forwarded to the
// services. Settings answer by name through the bag (BagObject).
#include "automation/convert.h"
#include "model/tyx.h"

namespace qv {

const DispatchTable<Tyx>& Tyx::Table() {
  using T = Tyx;
  static const auto table =
      DispatchTable<T>(u"Tyx")
          .Property(
              u"lhWnd", [](T& t, Args) { return Variant(t.lhWnd); },
              [](T& t, Args, const Variant& v) { t.lhWnd = ToLong(v); })
          .Property(
              u"hwnd", [](T& t, Args) { return Variant(t.hwnd()); },
              [](T& t, Args, const Variant& v) { t.set_hwnd(ToLong(v)); })
          .Property(u"ProjInit", [](T& t, Args) { return Variant(t.ProjInit()); })
          .Property(u"db", [](T& t, Args) { return Variant(t.db()); })
          .Property(u"DBCnt", [](T& t, Args) { return Variant(t.DBCnt()); })
          .Property(u"Properties",
                    [](T& t, Args) { return Variant(Ref<TyProperties>(&t.Properties())); })
          .Property(u"Extensions",
                    [](T& t, Args) { return Variant(Ref<TyxExtensions>(&t.Extensions())); })
          .Property(
              u"ProjErr", [](T& t, Args) { return Variant(t.ProjErr()); },
              [](T& t, Args, const Variant& v) { t.SetProjErr(ToString(v)); })
          .Property(u"EngineVersion", [](T& t, Args) { return Variant(t.EngineVersion()); })
          .Property(
              u"CurTable", [](T& t, Args) { return Variant(t.CurTable); }, nullptr,
              [](T& t, Args, const Variant& v) {
                t.CurTable = v.is_object() ? dynamic_cast<TyxTable*>(v.as_object()) : nullptr;
              })
          .Property(
              u"CurField", [](T& t, Args) { return Variant(t.CurField); }, nullptr,
              [](T& t, Args, const Variant& v) {
                t.CurField = v.is_object() ? dynamic_cast<TyxField*>(v.as_object()) : nullptr;
              })
          .Method(u"AddProj",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.AddProj(ToString(a[0]));
                    return Variant();
                  })
          .Method(u"DeleteProj",
                  [](T& t, Args a) {
                    CheckArgCount(a, 0, 0);
                    t.DeleteProj();
                    return Variant();
                  })
          .Method(u"AddExtension",
                  [](T& t, Args a) {
                    CheckArgCount(a, 2, 2);
                    return Variant(t.AddExtension(ToString(a[0]), ToString(a[1])));
                  })
          .Method(u"DeleteExtension",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(t.DeleteExtension(ToString(a[0])));
                  })
          .Method(u"Load",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.Load(ToString(a[0]));
                    return Variant();
                  })
          .Method(u"Save",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.Save(ToString(a[0]));
                    return Variant();
                  })
          .Method(u"LoadDefault",
                  [](T& t, Args) {
                    t.LoadDefault();
                    return Variant();
                  })
          .Method(u"SaveDefault",
                  [](T& t, Args) {
                    t.SaveDefault();
                    return Variant();
                  })
          .Method(u"LoadDB",
                  [](T& t, Args a) {
                    CheckArgCount(a, 9, 9);
                    t.Services().LoadDB(t, a);
                    return Variant();
                  })
          .Method(u"LoadTable",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.Services().LoadTable(t, a[0]);
                    return Variant();
                  })
          .Method(u"UnLoadTable",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.Services().UnLoadTable(t, a[0]);
                    return Variant();
                  })
          .Method(u"UnLoadDB",
                  [](T& t, Args) {
                    t.Services().UnLoadDB(t);
                    return Variant();
                  })
          .Method(u"CustomViewConnStr",
                  [](T& t, Args) { return t.Services().CustomViewConnStr(t); })
          .Method(u"LoadCustomView",
                  [](T& t, Args a) {
                    CheckArgCount(a, 2, 3);
                    t.Services().LoadCustomView(t, a[0], a[1],
                                                HasArg(a, 2) ? a[2] : Variant::Missing());
                    return Variant();
                  })
          .Method(u"LoadReport",
                  [](T& t, Args a) {
                    CheckArgCount(a, 2, 2);
                    return Variant(t.Services().LoadReport(t, a[0], a[1]));
                  })
          .Method(u"CheckDB", [](T& t, Args) { return Variant(t.Services().CheckDB(t)); })
          .Method(u"SynchronizeDB",
                  [](T& t, Args) {
                    t.Services().SynchronizeDB(t);
                    return Variant();
                  })
          .Method(u"SyncCustom",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.Services().SyncCustom(t, a[0]);
                    return Variant();
                  })
          .Method(u"SyncReport",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    t.Services().SyncReport(t, a[0]);
                    return Variant();
                  })
          .Method(u"SyncProperties",
                  [](T& t, Args a) {
                    CheckArgCount(a, 2, 2);
                    t.Services().SyncProperties(t, a[0], a[1]);
                    return Variant();
                  })
          .Method(u"Parse",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(t.Services().Parse(t, a[0]));
                  })
          .Method(u"FldSrchOprs",
                  [](T& t, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(t.Services().FldSrchOprs(t, ToInteger(a[0])));
                  })
          .Method(u"GenCheck", [](T& t, Args) { return Variant(t.Services().GenCheck(t)); })
          .Method(u"GenScript",
                  [](T& t, Args) {
                    t.Services().GenScript(t);
                    return Variant();
                  })
          .Parameterless({u"db", u"Properties", u"Extensions"});
  return table;
}

}  // namespace qv
