// CheckDB: how far the live schema has moved from the project. Tables and views are compared
// with a fresh read of the schema, custom views with a fresh run of their statements, reports
// with their source tables. Nothing in the definitions changes except the error text of a
// custom view or a report.
//
//   std::vector<SchemaDifference> found;
//   int16_t n = CheckDB(*tyx, &found);   // -1: the schema could not be read (see ProjErr)
#pragma once

#include <cstdint>
#include <vector>

#include "automation/string.h"
#include "model/field.h"
#include "model/tyx.h"
#include "schema/tyx_schema.h"

namespace qv {

// One difference in words, for a host that lists them. The counts of CheckDB stay the measure;
// this list also names what the counts only imply (a field the schema dropped).
struct SchemaDifference {
  enum Kind : uint8_t {
    kTableAdded,
    kTableRemoved,
    kTableChanged,  // its key changed, or it lost fields: `before`/`after` tell which
    kFieldAdded,
    kFieldRemoved,
    kFieldChanged,      // `before` and `after` describe the two definitions
    kCustomViewBroken,  // `after` holds TblCustomError
    kCustomViewChanged,
    kReportBroken,  // `after` holds TblCustomError
    kReportChanged,
    kUnreadable,  // a table or view whose columns could not be read: `after` tells why
  };
  Kind kind;
  String table;
  String table_type;
  String field;
  String before;
  String after;
};
using DifferenceList = std::vector<SchemaDifference>;

// The number of differences (at most 32767), 0 when the project agrees with the schema, -1
// when the schema could not be read. `details`, when given, receives each difference.
int16_t CheckDB(Tyx& tyx, DifferenceList* details = nullptr);
// The same against a schema already read (ReadLiveSchema), so that a synchronisation that
// follows works from the very snapshot that was checked.
int16_t CheckDB(Tyx& tyx, const TyxSchema& schema, DifferenceList* details);

// The steps of CheckDB, each the sum of its counters.
int32_t CheckTables(Tyx& tyx, const TyxSchema& schema, DifferenceList* details);
int32_t CheckCustomViews(Tyx& tyx, DifferenceList* details);
int32_t CheckCustomView(Tyx& tyx, StringView name, DifferenceList* details);
int32_t CheckReports(Tyx& tyx, DifferenceList* details);
int32_t CheckReport(Tyx& tyx, StringView name, DifferenceList* details);

// The seven attributes that make two columns the same: FldType, FldSize, FldUniqueIdx,
// FldZeroLen, FldReq, FldAutoIncrement, FldAttribute.
bool IsSameSchemaField(const TySchemaField& record, const TyxField& field);
bool IsSameField(const TyxField& a, const TyxField& b);

// "integer (3), size 4, required, auto-increment, ..." for a listing.
String DescribeColumn(int16_t type, int32_t size, bool unique, bool zero_len, bool required,
                      bool auto_increment, int32_t attribute);

// The tables and views of the schema whose columns could not be read, with the reason.
DifferenceList UnreadableTables(const TyxSchema& schema);

}  // namespace qv
