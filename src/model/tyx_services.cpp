// The default answers of the root's entry points: each one says that this build lacks it.
#include "model/tyx_services.h"

#include "support/tyx_vars.h"

namespace qv {

void TyxServices::Unavailable(StringView name) {
  throw Error::Failure(Vars().ProductTitle + u": " + name + u" is not available in this build");
}

void TyxServices::Load(Tyx&, const String&) {
  Unavailable(u"Load");
}
void TyxServices::Save(Tyx&, const String&) {
  Unavailable(u"Save");
}
void TyxServices::LoadDefault(Tyx&) {
  Unavailable(u"LoadDefault");
}
void TyxServices::SaveDefault(Tyx&) {
  Unavailable(u"SaveDefault");
}
void TyxServices::LoadDB(Tyx&, Args) {
  Unavailable(u"LoadDB");
}
void TyxServices::LoadTable(Tyx&, const Variant&) {
  Unavailable(u"LoadTable");
}
void TyxServices::UnLoadTable(Tyx&, const Variant&) {
  Unavailable(u"UnLoadTable");
}
void TyxServices::UnLoadDB(Tyx&) {
  Unavailable(u"UnLoadDB");
}
Variant TyxServices::CustomViewConnStr(Tyx&) {
  Unavailable(u"CustomViewConnStr");
}
void TyxServices::LoadCustomView(Tyx&, const Variant&, const Variant&, const Variant&) {
  Unavailable(u"LoadCustomView");
}
bool TyxServices::LoadReport(Tyx&, const Variant&, const Variant&) {
  Unavailable(u"LoadReport");
}
int16_t TyxServices::CheckDB(Tyx&) {
  Unavailable(u"CheckDB");
}
void TyxServices::SynchronizeDB(Tyx&) {
  Unavailable(u"SynchronizeDB");
}
void TyxServices::SyncCustom(Tyx&, const Variant&) {
  Unavailable(u"SyncCustom");
}
void TyxServices::SyncReport(Tyx&, const Variant&) {
  Unavailable(u"SyncReport");
}
void TyxServices::SyncProperties(Tyx&, const Variant&, const Variant&) {
  Unavailable(u"SyncProperties");
}
String TyxServices::Parse(Tyx&, const Variant&) {
  Unavailable(u"Parse");
}
String TyxServices::FldSrchOprs(Tyx&, int16_t) {
  Unavailable(u"FldSrchOprs");
}
int16_t TyxServices::GenCheck(Tyx&) {
  Unavailable(u"GenCheck");
}
void TyxServices::GenScript(Tyx&) {
  Unavailable(u"GenScript");
}

}  // namespace qv
