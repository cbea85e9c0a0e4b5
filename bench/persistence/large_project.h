// The project that the persistence figures are measured on: 500 tables of 20 fields, each
// table and field with its defaults applied as a database load leaves them, names and values
// of realistic length. Benchmarks run in a private HOME so that the settings they touch are
// never the user's.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "model/tyx.h"
#include "root/create_tyx.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::bench {

constexpr int kTables = 500;
constexpr int kFields = 20;

// Points HOME and the data folder at a fresh temporary folder (once per process) and
// silences the status surface. Returns the folder.
inline const std::filesystem::path& BenchHome() {
  static const std::filesystem::path home = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "qv-bench-XXXXXX").string();
    std::filesystem::path dir = ::mkdtemp(pattern.data());
    ::setenv("HOME", dir.c_str(), 1);
    ::unsetenv("XDG_CONFIG_HOME");
    ::unsetenv("XDG_DOCUMENTS_DIR");
    ::setenv("QUORVEX_DATA_DIR", QV_SOURCE_DIR "/share", 1);
    return dir;
  }();
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
  return home;
}

inline String BenchFile(const char* name) {
  return String::FromUtf8((BenchHome() / name).string());
}

inline Ref<Tyx> BuildLargeProject() {
  static const AdoType kTypes[] = {adInteger,  adVarWChar,     adVarWChar,     adDBTimeStamp,
                                   adCurrency, adBoolean,      adLongVarWChar, adDouble,
                                   adGUID,     adLongVarBinary};
  Ref<Tyx> tyx = CreateTyx();
  tyx->AddProj(u"Benchmark shop");
  tyx->SetSmtpServer(u"localhost");
  tyx->SetSmtpServerPort(25);
  tyx->AddExtension(u"Charts", u"/opt/quorvex/extensions/charts.zip");
  tyx->Databases().Add(u"shop");
  tyx->CurrentDbName = u"shop";
  const Ref<TyxDatabase> db = tyx->db();
  db->SetDBType(u"CONNECTIONSTRING");
  db->SetDBConnstr(u"Provider=SQLite;Data Source=/srv/data/shop.db");
  db->SetDBDBMSName(u"SQLite");
  TyxTables& tables = db->Tables();
  for (int t = 0; t < kTables; ++t) {
    const String name = u"Customer Orders " + NumberText(t);
    tables.Add(name);
    TyxTable& table = *tables.list().ByKey(name);
    table.SetTblType(t % 10 == 9 ? u"VIEW" : u"TABLE");
    table.LoadTableDefault();
    for (int f = 0; f < kFields; ++f) {
      const String column = u"ColumnName" + NumberText(f);
      table.Fields().Add(column);
      TyxField& field = *table.Fields().list().ByKey(column);
      field.SetFieldSupport(kTypes[(t + f) % 10]);
      field.SetFldSize(50);
      field.SetFldIsPrimaryKey(f == 0);
      field.SetFldAutoIncrement(f == 0);
      field.LoadFldDefault();
    }
    table.SetTblKey(u"ColumnName0");
  }
  return tyx;
}

}  // namespace qv::bench
