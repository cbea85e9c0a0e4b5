// The registration list of a database, in the order that is also the order of the attributes
// of Database in the project file. X(Name, Type, Registry, File, Sync); see bag_accessors.h.
#pragma once

#include "model/bag_accessors.h"

// clang-format off
#define QV_DATABASE_PROPERTIES(X) \
  X(DBName, String, QV_REG_NONE, 1, 0) \
  X(DBType, String, QV_REG_NONE, 1, 0) \
  X(DBPath, String, QV_REG_NONE, 1, 0) \
  X(DBUseServerMapPath, Boolean, QV_REG_NONE, 1, 0) \
  X(DBPhyPath, String, QV_REG_NONE, 1, 0) \
  X(DBUID, String, QV_REG_NONE, 1, 0) \
  X(DBPwd, String, QV_REG_NONE, 1, 0) \
  X(DBQuoteS, String, QV_REG_NONE, 1, 0) \
  X(DBQuoteE, String, QV_REG_NONE, 1, 0) \
  X(DBConnstr, String, QV_REG_NONE, 1, 0) \
  X(DBConnstrOra, String, QV_REG_NONE, 1, 0) \
  X(DBADOVer, String, QV_REG_NONE, 1, 0) \
  X(DBDBMSName, String, QV_REG_NONE, 1, 0) \
  X(DBDBMSVer, String, QV_REG_NONE, 1, 0) \
  X(DBOLEDBVer, String, QV_REG_NONE, 1, 0) \
  X(DBProviderName, String, QV_REG_NONE, 1, 0) \
  X(DBProviderVer, String, QV_REG_NONE, 1, 0) \
  X(DBSchema, String, QV_REG_NONE, 1, 0) \
  X(MaxUploadSize, Long, QV_REG_NUMBER, 1, 1) \
  X(SecUserLevelFld, String, QV_REG_NONE, 1, 1) \
  X(SecDefault, String, QV_REG_NONE, 1, 1) \
  X(SecuUserIDFld, String, QV_REG_NONE, 1, 1) \
  X(UseDynamicUserLevel, Boolean, QV_REG_NONE, 1, 1) \
  X(UserLevelTbl, String, QV_REG_NONE, 1, 1) \
  X(UserLevelIdFld, String, QV_REG_NONE, 1, 1) \
  X(UserLevelNameFld, String, QV_REG_NONE, 1, 1) \
  X(UserLevelPrivTbl, String, QV_REG_NONE, 1, 1) \
  X(UserLevelPrivTblNameFld, String, QV_REG_NONE, 1, 1) \
  X(UserLevelPrivUserLevelFld, String, QV_REG_NONE, 1, 1) \
  X(UserLevelPrivPrivFld, String, QV_REG_NONE, 1, 1) \
  X(SecuParentUserIDFld, String, QV_REG_NONE, 1, 1)
// clang-format on
