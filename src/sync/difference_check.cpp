// The difference check. Its counters follow the measure the host has always seen: a new field
// counts twice (new and unmatched), a dropped field only makes its table count as changed, and
// 0 is the one value a caller relies on.
#include "sync/difference_check.h"

#include <algorithm>
#include <unordered_set>

#include "automation/convert.h"
#include "schema/custom_view.h"
#include "support/common.h"
#include "support/tyx_vars.h"
#include "sync/live_schema.h"

namespace qv {

namespace {

bool IsTableOrView(StringView type) {
  return type == u"TABLE" || type == u"VIEW";
}

// The project table matched by name and type together, or nullptr.
TyxTable* MatchTable(TyxDatabase& db, StringView name, StringView type) {
  TyxTable* table = db.Tables().list().ByName(name);
  return table && table->TblType() == type ? table : nullptr;
}

String DescribeField(const TyxField& f) {
  return DescribeColumn(f.FldType(), f.FldSize(), f.FldUniqueIdx(), f.FldZeroLen(), f.FldReq(),
                        f.FldAutoIncrement(), f.FldAttribute());
}

String DescribeRecord(const TySchemaField& f) {
  return DescribeColumn(f.FldType, f.FldSize, f.FldUniqueIdx, f.FldZeroLen, f.FldReq,
                        f.FldAutoIncrement, f.FldAttribute);
}

void Note(DifferenceList* details, SchemaDifference::Kind kind, const TyxTable& table,
          StringView field = {}, StringView before = {}, StringView after = {}) {
  if (!details) return;
  details->push_back(
      {kind, table.TblName(), table.TblType(), String(field), String(before), String(after)});
}

// Counts of one comparison of columns with a project table's fields.
struct FieldCounts {
  int32_t same = 0;
  int32_t modified = 0;
  int32_t added = 0;
};

// Compares each column of `record` with the field of its name, as CheckTables and the custom
// view check both do. A listing also gets the fields that the record lacks and, for a custom
// view, one line for the view as a whole (`changed_kind`).
FieldCounts CompareFields(const TySchemaTable& record, const TyxTable& table,
                          DifferenceList* details, SchemaDifference::Kind changed_kind) {
  FieldCounts counts;
  const TyxFields& fields = table.Fields();
  for (int16_t i = 0; i < record.TblFldCnt; ++i) {
    const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
    const TyxField* field = fields.list().ByName(column.FldName);
    if (!field) {
      ++counts.added;
      Note(details, SchemaDifference::kFieldAdded, table, column.FldName, {},
           DescribeRecord(column));
    } else if (IsSameSchemaField(column, *field)) {
      ++counts.same;
    } else {
      ++counts.modified;
      Note(details, SchemaDifference::kFieldChanged, table, column.FldName, DescribeField(*field),
           DescribeRecord(column));
    }
  }
  if (details) {
    // Not counted on their own: a dropped field shows in the counts as a changed table.
    std::unordered_set<String> in_record;
    for (int16_t i = 0; i < record.TblFldCnt; ++i) {
      in_record.insert(record.TblFields.fld[static_cast<size_t>(i)].FldName);
    }
    fields.list().ForEach([&](TyxField& f) {
      if (!in_record.contains(f.FldName())) {
        Note(details, SchemaDifference::kFieldRemoved, table, f.FldName(), DescribeField(f));
      }
    });
    if (changed_kind != SchemaDifference::kTableChanged && counts.added + counts.modified > 0) {
      Note(details, changed_kind, table);
    }
  }
  return counts;
}

// A reader's name for an ADO type code.
StringView TypeName(int16_t type) {
  switch (type) {
    case 2:
      return u"smallint";
    case 3:
      return u"integer";
    case 4:
      return u"single";
    case 5:
      return u"double";
    case 6:
      return u"currency";
    case 7:
    case 133:
      return u"date";
    case 11:
      return u"boolean";
    case 14:
    case 131:
    case 139:
      return u"numeric";
    case 16:
    case 17:
      return u"tinyint";
    case 18:
    case 19:
      return u"unsigned integer";
    case 20:
    case 21:
      return u"bigint";
    case 72:
      return u"guid";
    case 128:
    case 204:
      return u"binary";
    case 129:
    case 130:
      return u"char";
    case 134:
      return u"time";
    case 135:
      return u"timestamp";
    case 200:
    case 202:
      return u"varchar";
    case 201:
    case 203:
      return u"text";
    case 205:
      return u"long binary";
    default:
      return u"type";
  }
}

int32_t Saturate(int32_t n) {
  return std::min<int32_t>(n, 32767);
}

}  // namespace

String DescribeColumn(int16_t type, int32_t size, bool unique, bool zero_len, bool required,
                      bool auto_increment, int32_t attribute) {
  String text = String(TypeName(type)) + u" (" + ToString(Variant(type)) + u"), size " +
                ToString(Variant(size));
  if (required) text.Append(u", required");
  if (unique) text.Append(u", unique");
  if (auto_increment) text.Append(u", auto-increment");
  if (!zero_len) text.Append(u", no zero length");
  text.Append(u", attributes " + ToString(Variant(attribute)));
  return text;
}

bool IsSameSchemaField(const TySchemaField& r, const TyxField& f) {
  return r.FldType == f.FldType() && r.FldSize == f.FldSize() &&
         r.FldUniqueIdx == f.FldUniqueIdx() && r.FldZeroLen == f.FldZeroLen() &&
         r.FldReq == f.FldReq() && r.FldAutoIncrement == f.FldAutoIncrement() &&
         r.FldAttribute == f.FldAttribute();
}

bool IsSameField(const TyxField& a, const TyxField& b) {
  return a.FldType() == b.FldType() && a.FldSize() == b.FldSize() &&
         a.FldUniqueIdx() == b.FldUniqueIdx() && a.FldZeroLen() == b.FldZeroLen() &&
         a.FldReq() == b.FldReq() && a.FldAutoIncrement() == b.FldAutoIncrement() &&
         a.FldAttribute() == b.FldAttribute();
}

int16_t CheckDB(Tyx& tyx, DifferenceList* details) {
  TyxSchema schema;
  if (!ReadLiveSchema(tyx, schema, Vars().ProductName + u" - Database Synchronization check...")) {
    return -1;
  }
  return CheckDB(tyx, schema, details);
}

int16_t CheckDB(Tyx& tyx, const TyxSchema& schema, DifferenceList* details) {
  if (details) {
    const DifferenceList unreadable = UnreadableTables(schema);
    details->insert(details->end(), unreadable.begin(), unreadable.end());
  }
  const int32_t sum = CheckTables(tyx, schema, details) + CheckCustomViews(tyx, details) +
                      CheckReports(tyx, details);
  return static_cast<int16_t>(Saturate(sum));
}

int32_t CheckTables(Tyx& tyx, const TyxSchema& schema, DifferenceList* details) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return 0;
  ProgressWindow progress(tyx, u" - Checking Database...");
  int32_t changed_tables = 0, new_tables = 0, deleted_tables = 0, changed_keys = 0;
  int32_t new_fields = 0, modified_fields = 0, unmatched_fields = 0;
  const std::vector<TySchemaTable>& records = schema.db().tables.Tbl;
  std::unordered_set<String> seen;  // name and type of every record, for the deleted tables
  for (int16_t t = 0; t < schema.tblcnt(); ++t) {
    const TySchemaTable& record = records[static_cast<size_t>(t)];
    seen.insert(record.TblType + u"\n" + record.TblName);
    TyxTable* table = MatchTable(*db, record.TblName, record.TblType);
    if (!table) {
      ++new_tables;
      new_fields += record.TblFldCnt;
      if (details) {
        details->push_back({SchemaDifference::kTableAdded,
                            record.TblName,
                            record.TblType,
                            {},
                            {},
                            ToString(Variant(record.TblFldCnt)) +
                                (record.TblFldCnt == 1 ? u" field" : u" fields")});
      }
      continue;
    }
    if (!table->TblLoaded()) continue;  // a table the user didn't load is of no interest
    if (record.TblType == u"TABLE" && SortKeyList(table->TblKey()) != SortKeyList(record.TblKey)) {
      ++changed_keys;
      Note(details, SchemaDifference::kTableChanged, *table, {}, u"key " + table->TblKey(),
           u"key " + record.TblKey);
    }
    const FieldCounts counts =
        CompareFields(record, *table, details, SchemaDifference::kTableChanged);
    new_fields += counts.added;
    modified_fields += counts.modified;
    const bool changed =
        counts.added + counts.modified > 0 || record.TblFldCnt != table->Fields().Count();
    if (changed) ++changed_tables;
    unmatched_fields += record.TblFldCnt - (counts.same + counts.modified);
  }
  db->Tables().list().ForEach([&](TyxTable& table) {
    if (!IsTableOrView(table.TblType())) return;
    if (seen.contains(table.TblType() + u"\n" + table.TblName())) return;
    ++deleted_tables;
    unmatched_fields += table.Fields().Count();
    Note(details, SchemaDifference::kTableRemoved, table);
  });
  return changed_tables + new_tables + deleted_tables + changed_keys + new_fields +
         modified_fields + unmatched_fields;
}

namespace {

// Runs `check` on every table of one TblType under its progress window and sums the counts.
int32_t CheckEach(Tyx& tyx, StringView type, StringView progress_suffix,
                  int32_t (*check)(Tyx&, StringView, DifferenceList*), DifferenceList* details) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return 0;
  ProgressWindow progress(tyx, progress_suffix);
  int32_t sum = 0;
  for (const String& name : TableNamesOfType(*db, type))
    sum += check(tyx, name, details);
  return sum;
}

}  // namespace

int32_t CheckCustomViews(Tyx& tyx, DifferenceList* details) {
  return CheckEach(tyx, u"CUSTOMVIEW", u" - Checking Custom View...", &CheckCustomView, details);
}

int32_t CheckCustomView(Tyx& tyx, StringView name, DifferenceList* details) {
  TyxDatabase* db = CurrentDatabase(tyx);
  TyxTable* table = db ? db->Tables().list().ByName(name) : nullptr;
  if (!table) return 0;
  try {
    TyxSchema schema;
    const int16_t result = schema.LoadADOCustomView(ToString(CustomViewConnStr(tyx)),
                                                    table->TblName(), table->TblCustomSQL());
    TyxVars& vars = Vars();
    if (result != 0 || !vars.ProjErr.empty()) {
      table->SetTblCustomError(vars.ProjErr);
      Note(details, SchemaDifference::kCustomViewBroken, *table, {}, {}, vars.ProjErr);
      return 0;
    }
    table->SetTblCustomError(u"");
    const TySchemaTable& record = schema.db().tables.Tbl.front();
    const FieldCounts counts =
        CompareFields(record, *table, details, SchemaDifference::kCustomViewChanged);
    return counts.added + counts.modified + (record.TblFldCnt - (counts.same + counts.modified));
  } catch (const Error&) {
    return 0;  // what has been counted stays: nothing, at this point
  }
}

int32_t CheckReports(Tyx& tyx, DifferenceList* details) {
  return CheckEach(tyx, u"REPORT", u" - Checking Report...", &CheckReport, details);
}

int32_t CheckReport(Tyx& tyx, StringView name, DifferenceList* details) {
  TyxDatabase* db = CurrentDatabase(tyx);
  TyxTable* report = db ? db->Tables().list().ByName(name) : nullptr;
  if (!report) return 0;
  const String source_name = report->TblRptSrc();
  TyxTable* source = nullptr;
  db->Tables().list().ForEach([&](TyxTable& t) {
    if (t.TblName() == source_name) source = &t;
  });
  if (!source) {
    TyxVars& vars = Vars();
    vars.ProjErr = vars.ProductName + u": Source Table not found";
    report->SetTblCustomError(vars.ProjErr);
    Note(details, SchemaDifference::kReportBroken, *report, {}, {},
         vars.ProjErr + u" (" + source_name + u")");
    return 0;
  }
  int32_t same = 0, modified = 0, added = 0;
  source->Fields().list().ForEach([&](TyxField& from) {
    const TyxField* field = report->Fields().list().ByName(from.FldName());
    if (!field) {
      ++added;
      Note(details, SchemaDifference::kFieldAdded, *report, from.FldName(), {},
           DescribeField(from));
    } else if (IsSameField(from, *field)) {
      ++same;
    } else {
      ++modified;
      Note(details, SchemaDifference::kFieldChanged, *report, from.FldName(), DescribeField(*field),
           DescribeField(from));
    }
  });
  if (details && added + modified > 0) Note(details, SchemaDifference::kReportChanged, *report);
  return added + modified + (source->Fields().Count() - (same + modified));
}

DifferenceList UnreadableTables(const TyxSchema& schema) {
  DifferenceList list;
  for (int16_t t = 0; t < schema.tblcnt(); ++t) {
    const TySchemaTable& record = schema.db().tables.Tbl[static_cast<size_t>(t)];
    if (record.TblGen) continue;
    const String why =
        !record.read_error.empty() ? record.read_error : String(u"its columns could not be read");
    list.push_back({SchemaDifference::kUnreadable, record.TblName, record.TblType, {}, {}, why});
  }
  return list;
}

}  // namespace qv
