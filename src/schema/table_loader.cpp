// The ADO table loader.
#include "schema/table_loader.h"

#include "automation/convert.h"
#include "schema/column_facts.h"
#include "schema/key_reader.h"
#include "schema/probe.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

class FieldKeySink : public KeySink {
 public:
  explicit FieldKeySink(TyxFields& fields) : fields_(fields) {}
  void MarkPrimaryKey(StringView column) override {
    if (TyxField* f = Find(column)) f->SetFldIsPrimaryKey(true);
  }
  void MarkRequired(StringView column) override {
    if (TyxField* f = Find(column)) {
      f->SetFldReq(true);
      f->SetFldRequired(true);
    }
  }
  void MarkUnique(StringView column) override {
    if (TyxField* f = Find(column)) f->SetFldUniqueIdx(true);
  }

 private:
  TyxField* Find(StringView column) { return fields_.list().ByName(column); }
  TyxFields& fields_;
};

String TextOf(const data::Recordset& rs, StringView column) {
  const Variant& v = rs.Fields(column).Value();
  return v.is_null() || v.is_empty() ? String() : ToString(v);
}

// Probes the table and loads its columns; False when the probe could not be opened.
bool LoadFields(TyxTable& table, data::Connection& cn) {
  data::Recordset probe;
  try {
    probe.Open(ProbeStatement(Vars().CurrentTableSchema, table.TblName()), cn);
  } catch (const Error&) {
    return false;
  }
  ApplyToTable(ReadColumnFacts(probe), table, [&](const String& name) {
    table.SetTblError(DuplicateColumnText(name));  // a later repeat replaces the words
  });
  probe.Close();
  return true;
}

}  // namespace

String DuplicateColumnText(StringView column) {
  return Vars().ProductTitle + u": Duplicate Column Name - " + column +
         u" found! ASP scripts may not be generated correctly! Please rename duplicated field "
         u"names to ensure correct generation!";
}

void Load_ADO(TyxTable& table, data::Connection& cn, const data::Recordset& rs,  // NOLINT
              bool load_all) {
  const int32_t kind = DatabaseKind(Vars().CurrentDbmsName);
  table.SetTblName(TextOf(rs, u"TABLE_NAME"));
  table.SetTblType(TextOf(rs, u"TABLE_TYPE"));
  if (load_all && Vars().DynamicLoadDB) {
    table.SetTblGen(false);
    table.SetTblLoaded(false);
    return;
  }
  table.SetTblGen(true);
  if (LoadFields(table, cn)) {
    table.SetTblLoaded(true);
  } else {
    table.SetTblGen(false);
  }
  if (table.TblType() == u"TABLE") {
    FieldKeySink sink(table.Fields());
    if (std::optional<String> key = ReadTableKeys(cn, table.TblName(), kind, sink)) {
      table.SetTblKey(*key);
    }
  }
  table.LoadTableDefault();
}

}  // namespace qv
