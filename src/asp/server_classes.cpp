// The ADODB objects come from the ado library when the build has it.
#include "asp/server_classes.h"

#if QV_HAVE_ADO
#include "ado/ado.h"
#endif

namespace qv::asp {

void RegisterServerClasses(vbs::ClassRegistry& registry) {
#if QV_HAVE_ADO
  ado::RegisterClasses(registry);
#else
  (void)registry;
#endif
}

std::u16string_view AdoConstantsScript() {
  // The everyday constants of cursors, locks, commands, parameters and field types.
  static constexpr std::u16string_view kScript =
      u"Const adOpenForwardOnly = 0, adOpenKeyset = 1, adOpenDynamic = 2, adOpenStatic = 3\r\n"
      u"Const adLockReadOnly = 1, adLockPessimistic = 2, adLockOptimistic = 3, "
      u"adLockBatchOptimistic = 4\r\n"
      u"Const adUseServer = 2, adUseClient = 3\r\n"
      u"Const adCmdUnknown = 8, adCmdText = 1, adCmdTable = 2, adCmdStoredProc = 4, "
      u"adCmdTableDirect = 512\r\n"
      u"Const adExecuteNoRecords = 128, adAsyncExecute = 16\r\n"
      u"Const adParamInput = 1, adParamOutput = 2, adParamInputOutput = 3, adParamReturnValue = "
      u"4\r\n"
      u"Const adEmpty = 0, adSmallInt = 2, adInteger = 3, adSingle = 4, adDouble = 5, adCurrency = "
      u"6\r\n"
      u"Const adDate = 7, adBSTR = 8, adBoolean = 11, adVariant = 12, adDecimal = 14, adTinyInt = "
      u"16\r\n"
      u"Const adUnsignedTinyInt = 17, adBigInt = 20, adGUID = 72, adBinary = 128, adChar = 129\r\n"
      u"Const adWChar = 130, adNumeric = 131, adDBDate = 133, adDBTime = 134, adDBTimeStamp = "
      u"135\r\n"
      u"Const adVarChar = 200, adLongVarChar = 201, adVarWChar = 202, adLongVarWChar = 203\r\n"
      u"Const adVarBinary = 204, adLongVarBinary = 205\r\n"
      u"Const adStateClosed = 0, adStateOpen = 1\r\n"
      u"Const adAffectCurrent = 1, adAffectAll = 3, adSearchForward = 1, adSearchBackward = -1\r\n"
      u"Const adBookmarkCurrent = 0, adBookmarkFirst = 1, adBookmarkLast = 2\r\n"
      u"Const adPosUnknown = -1, adPosBOF = -2, adPosEOF = -3\r\n"
      u"Const adSchemaTables = 20, adSchemaColumns = 4, adSchemaPrimaryKeys = 28\r\n"
      u"Const adTypeBinary = 1, adTypeText = 2, adSaveCreateNotExist = 1, adSaveCreateOverWrite = "
      u"2\r\n";
  return kScript;
}

}  // namespace qv::asp
