// The plain records of a schema snapshot: what TyxSchema reads from a data source without
// touching the project. Synchronisation compares them with the project's tables and fields.
// They are values: a copy owns its strings and arrays.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

struct TySchemaField {
  bool FldSync = false;  // working flag of synchronisation; the readers leave it False
  int16_t FldSeq = 0;    // position from 1, counting only the columns kept
  String FldName;
  int16_t FldType = 0;  // ADO DataTypeEnum code (-1 for a DAO type without a mapping)
  bool FldSupport = false;
  int32_t FldSize = 0;
  bool FldUniqueIdx = false;
  bool FldZeroLen = false;
  bool FldReq = false;
  bool FldIsPrimaryKey = false;
  bool FldAutoIncrement = false;
  int32_t FldAttribute = 0;
  Variant FldDefault;
  String FldQuoteS;
  String FldQuoteE;
  String FldCaption;
  // False when the provider couldn't tell whether the column auto-increments: the record then
  // says it does, while a project field built from it keeps its old flag (see column_facts.h).
  bool auto_increment_known = true;
};

struct TySchemaFields {
  // fld[0] is the column at position 1: the positions the records speak of start at 1.
  std::vector<TySchemaField> fld;
};

struct TySchemaTable {
  bool TblSync = false;
  int16_t TblSeq = 0;
  String TblName;
  String TblType;  // "TABLE", "VIEW" or "CUSTOMVIEW"
  String TblKey;   // primary key columns, comma separated, in SortKeyList order
  bool TblUpdatable = false;
  String TblSQL;
  bool TblGen = false;    // False when the columns could not be read or a name repeats
  int16_t TblFldCnt = 0;  // kept columns; smaller than TblFields.fld.size() after duplicates
  TySchemaFields TblFields;
  // Why TblGen is False, in the database's own words where it gave any; for a host's listing.
  String read_error;
  // Whether the probe for the columns opened; TblGen alone can't tell that from a repeat.
  bool columns_read = false;
  // The last column name that the table repeats, or "".
  String repeated_column;

  // The kept field of that exact name among the first TblFldCnt, or nullptr.
  TySchemaField* FindField(StringView name);
};

struct TySchemaTables {
  std::vector<TySchemaTable> Tbl;  // Tbl[0] is table 1
};

struct TySchemaDB {
  String DBName;
  String DBType;
  String DBPath;
  bool DBUseServerMapPath = false;
  String DBPhyPath;
  String DBUID;
  String DBPwd;
  String DBConnstr;
  String DBADOVer;
  String DBDBMSName;
  String DBDBMSVer;
  String DBOLEDBVer;
  String DBProviderName;
  String DBProviderVer;
  String DBSchema;
  int16_t DBTblCnt = 0;
  TySchemaTables tables;
};

}  // namespace qv
