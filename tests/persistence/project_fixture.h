// What the project file tests share: a private HOME (settings store, documents folder), a quiet
// status surface, a root made as a host makes it, and a small project built in memory with
// every kind of object and the values that the file format treats specially.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include "model/tyx.h"
#include "persistence/project_file.h"
#include "persistence/saved_defaults.h"
#include "support/common.h"
#include "support/scratch_home.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {
// Failure messages show the engine's text as text.
inline void PrintTo(const String& text, std::ostream* out) {
  *out << '"' << text.ToUtf8() << '"';
}
}  // namespace qv

namespace qv::testing {

// "" when the two texts are equal, else where they first differ, with some context.
inline std::string FirstDifference(const std::string& a, const std::string& b) {
  if (a == b) return std::string();
  size_t at = 0;
  while (at < a.size() && at < b.size() && a[at] == b[at])
    ++at;
  const size_t from = at < 60 ? 0 : at - 60;
  return "first difference at byte " + std::to_string(at) + " of " + std::to_string(a.size()) +
         "/" + std::to_string(b.size()) + ":\n  " + a.substr(from, 120) + "\n  " +
         b.substr(from, 120);
}

// The root's persistence entries wired as the facade wires them, so that these tests build
// and run with the persistence library alone.
class PersistenceServices : public TyxServices {
 public:
  void Load(Tyx& tyx, const String& file) override { LoadProjectFile(tyx, file); }
  void Save(Tyx& tyx, const String& file) override { SaveProjectFile(tyx, file); }
  void LoadDefault(Tyx& tyx) override { qv::LoadDefault(tyx); }
  void SaveDefault(Tyx& tyx) override { qv::SaveDefault(tyx); }
};

// A root made by the creation steps that concern persistence: settings registered, constants
// and key paths set, the machine's defaults copied on a first run, LoadDefault.
inline Ref<Tyx> MakeRoot() {
  Ref<Tyx> tyx = MakeRef<Tyx>();
  tyx->SetServices(std::make_shared<PersistenceServices>());
  tyx->PrepareRoot();
  const Variant language = ReadRegValue(u"HKCU", Vars().SettingsKey, u"Language");
  if (language.is_empty()) SeedUserRegistry();
  tyx->LoadDefault();
  return tyx;
}

class ProjectFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
    tyx_ = MakeRoot();
  }

  // A path in the scratch folder, as the engine's text type.
  String PathOf(const std::string& name) const {
    return String::FromUtf8((home_.root() / name).string());
  }
  std::string Bytes(const String& path) const { return ScratchHome::Read(path.ToUtf8()); }
  void WriteBytes(const String& path, const std::string& bytes) const {
    ScratchHome::Write(path.ToUtf8(), bytes);
  }
  // A fresh root in the same process, as a host that opens a second project gets it.
  static Ref<Tyx> FreshRoot() { return MakeRoot(); }

  // Two extensions, one database with two tables and four fields. The lists' own order
  // differs from the sequence numbers, values hold the four escaped characters and every kind
  // of setting, and what Load derives (quotes, keys) is already what it derives, so that the
  // project survives a save and a load unchanged.
  static void BuildSmallProject(Tyx& tyx);

  ScratchHome home_;
  Ref<Tyx> tyx_;
};

inline void ProjectFileTest::BuildSmallProject(Tyx& tyx) {
  tyx.AddProj(u"Shop & <Co> \"Online\"");
  tyx.SetSQLQuote(u"Square Bracket");
  tyx.SetCodePage(65001);
  tyx.SetRecPerPage(20);
  tyx.SetExportCsv(true);
  tyx.SetSmtpServer(u"mail.example.com");
  tyx.SetSmtpServerPort(587);
  tyx.SetCssStyles(u"body { margin: 0; }");
  tyx.AddExtension(u"Charts", u"/opt/quorvex/extensions/charts.zip");
  tyx.AddExtension(u"Audit", u"/opt/quorvex/extensions/audit.zip");
  tyx.Extensions().Item(Variant(u"Charts"))->SetSeq(2);
  tyx.Extensions().Item(Variant(u"Audit"))->SetSeq(1);

  tyx.Databases().Add(u"shop");
  tyx.CurrentDbName = u"shop";
  const Ref<TyxDatabase> db = tyx.db();
  db->SetDBType(u"CONNECTIONSTRING");
  db->SetDBConnstr(u"Provider=SQLite;Data Source=/data/shop.db");
  db->SetDBDBMSName(u"SQLite");
  db->SetDBQuoteS(u"[");
  db->SetDBQuoteE(u"]");
  db->SetSecDefault(u"Default");

  TyxTables& tables = db->Tables();
  tables.Add(u"Order Details");
  tables.Add(u"Customers");
  const Ref<TyxTable> details = tables.Item(Variant(u"Order Details"));
  const Ref<TyxTable> customers = tables.Item(Variant(u"Customers"));
  details->SetTblSeq(2);
  customers->SetTblSeq(1);
  for (const Ref<TyxTable>& t : {details, customers}) {
    t->SetTblType(u"TABLE");
    t->LoadTableDefault();
  }
  details->SetTblFilter(u"Qty > 0 && Price < 100");

  const auto add_field = [](TyxTable& table, StringView name, AdoType type, int32_t size) {
    table.Fields().Add(name);
    const Ref<TyxField> f = table.Fields().Item(Variant(String(name)));
    f->SetFieldSupport(type);
    f->SetFldSize(size);
    return f;
  };
  const Ref<TyxField> id = add_field(*customers, u"CustomerID", adInteger, 4);
  id->SetFldAutoIncrement(true);
  id->SetFldIsPrimaryKey(true);
  id->LoadFldDefault();
  const Ref<TyxField> active = add_field(*customers, u"Active", adBoolean, 2);
  active->LoadFldDefault();
  active->SetFldSeq(1);
  id->SetFldSeq(2);
  const Ref<TyxField> order = add_field(*details, u"OrderID", adInteger, 4);
  order->SetFldIsPrimaryKey(true);
  order->LoadFldDefault();
  const Ref<TyxField> note = add_field(*details, u"Note \"A&B\"", adVarWChar, 255);
  note->LoadFldDefault();
  note->SetFldDefault(Variant(u"<none>"));
  note->SetFldErrMsg(u"Needs <b>&</b> \"quotes\"");
  customers->SetTblKey(u"CustomerID");
  details->SetTblKey(u"OrderID");
}

}  // namespace qv::testing
