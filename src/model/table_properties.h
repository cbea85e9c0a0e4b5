// The registration list of a table, in the order that is also the order of the attributes of
// Table in the project file. X(Name, Type, Registry, File, Sync); see bag_accessors.h.
#pragma once

#include "model/bag_accessors.h"

// clang-format off
#define QV_TABLE_PROPERTIES(X) \
  X(TblSync, Boolean, QV_REG_NONE, 0, 0) \
  X(TblSeq, Integer, QV_REG_NONE, 1, 0) \
  X(TblName, String, QV_REG_NONE, 1, 0) \
  X(TblType, String, QV_REG_NONE, 1, 0) \
  X(TblKey, String, QV_REG_NONE, 1, 0) \
  X(TblGen, Boolean, QV_REG_NONE, 1, 1) \
  X(TblList, Boolean, QV_REG_NONE, 1, 1) \
  X(TblView, Boolean, QV_REG_NONE, 1, 1) \
  X(TblInlineEdit, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblEdit, Boolean, QV_REG_NONE, 1, 1) \
  X(TblAdd, Boolean, QV_REG_NONE, 1, 1) \
  X(TblDelete, Boolean, QV_REG_NONE, 1, 1) \
  X(TblCaption, String, QV_REG_NONE, 1, 1) \
  X(TblVar, String, QV_REG_NONE, 0, 0) \
  X(TblUpdatable, Boolean, QV_REG_NONE, 1, 0) \
  X(TblSQL, String, QV_REG_NONE, 1, 0) \
  X(TblError, String, QV_REG_NONE, 0, 0) \
  X(TblSrchType, String, QV_REG_NONE, 1, 1) \
  X(TblDefault, Boolean, QV_REG_NONE, 1, 1) \
  X(TblCopy, Boolean, QV_REG_NONE, 1, 1) \
  X(TblFilter, String, QV_REG_NONE, 1, 0) \
  X(TblUserIDFld, String, QV_REG_NONE, 1, 1) \
  X(TblSecurity, String, QV_REG_NONE, 1, 1) \
  X(TblMasterTbl, String, QV_REG_NONE, 1, 1) \
  X(TblMasterFld, String, QV_REG_NONE, 1, 1) \
  X(TblDetailFld, String, QV_REG_NONE, 1, 1) \
  X(TblBlob, Boolean, QV_REG_NONE, 1, 1) \
  X(TblSysGenUnits, String, QV_REG_NONE, 0, 0) \
  X(TblSysGenOption, String, QV_REG_NONE, 0, 0) \
  X(TblUserGenOption, String, QV_REG_NONE, 0, 0) \
  X(TblOverwrite, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblLoaded, Boolean, QV_REG_NONE, 1, 1) \
  X(TblRptShowDetails, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblRptShowGrandTotal, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblCustomSQL, String, QV_REG_NONE, 1, 0) \
  X(TblCustomError, String, QV_REG_NONE, 1, 0) \
  X(TblRptSrc, String, QV_REG_NONE, 1, 1) \
  X(TblRptIndent, Integer, QV_REG_NONE, 1, 1) \
  X(TblUseGlobal, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblRecPerPage, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblRecPerPageList, String, QV_REG_TEXT, 1, 1) \
  X(TblExportHtml, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblExportWord, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblExportExcel, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblExportXml, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblExportCsv, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblRecPerRow, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblMultiDelete, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblSortType, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblPagerStyle, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblTopPageLink, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblLinkOnLeft, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblInlineDelete, Boolean, QV_REG_NONE, 1, 1) \
  X(TblAuditTrail, Boolean, QV_REG_NONE, 1, 1) \
  X(TblSendMailOnAdd, Boolean, QV_REG_NONE, 1, 1) \
  X(TblSendMailOnEdit, Boolean, QV_REG_NONE, 1, 1) \
  X(TblSendMailOnDelete, Boolean, QV_REG_NONE, 1, 1) \
  X(TblShowBlankListPage, Boolean, QV_REG_NONE, 1, 1)
// clang-format on
