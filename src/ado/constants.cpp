// The ADO constants: the published values of ADO's enumerations.
#include "ado/constants.h"

#include <unordered_map>

namespace qv::ado {
namespace {

constexpr AdoConstant kConstants[] = {
    // CursorTypeEnum
    {u"adOpenUnspecified", -1},
    {u"adOpenForwardOnly", 0},
    {u"adOpenKeyset", 1},
    {u"adOpenDynamic", 2},
    {u"adOpenStatic", 3},
    // CursorOptionEnum
    {u"adHoldRecords", 0x100},
    {u"adMovePrevious", 0x200},
    {u"adAddNew", 0x1000400},
    {u"adDelete", 0x1000800},
    {u"adUpdate", 0x1008000},
    {u"adBookmark", 0x2000},
    {u"adApproxPosition", 0x4000},
    {u"adUpdateBatch", 0x10000},
    {u"adResync", 0x20000},
    {u"adNotify", 0x40000},
    {u"adFind", 0x80000},
    {u"adSeek", 0x400000},
    {u"adIndex", 0x800000},
    // LockTypeEnum
    {u"adLockUnspecified", -1},
    {u"adLockReadOnly", 1},
    {u"adLockPessimistic", 2},
    {u"adLockOptimistic", 3},
    {u"adLockBatchOptimistic", 4},
    // ExecuteOptionEnum
    {u"adOptionUnspecified", -1},
    {u"adAsyncExecute", 0x10},
    {u"adAsyncFetch", 0x20},
    {u"adAsyncFetchNonBlocking", 0x40},
    {u"adExecuteNoRecords", 0x80},
    {u"adExecuteStream", 0x400},
    {u"adExecuteRecord", 0x800},
    // ConnectOptionEnum
    {u"adConnectUnspecified", -1},
    {u"adAsyncConnect", 0x10},
    // ObjectStateEnum
    {u"adStateClosed", 0},
    {u"adStateOpen", 1},
    {u"adStateConnecting", 2},
    {u"adStateExecuting", 4},
    {u"adStateFetching", 8},
    // CursorLocationEnum
    {u"adUseNone", 1},
    {u"adUseServer", 2},
    {u"adUseClient", 3},
    {u"adUseClientBatch", 3},
    // DataTypeEnum
    {u"adEmpty", 0},
    {u"adTinyInt", 16},
    {u"adSmallInt", 2},
    {u"adInteger", 3},
    {u"adBigInt", 20},
    {u"adUnsignedTinyInt", 17},
    {u"adUnsignedSmallInt", 18},
    {u"adUnsignedInt", 19},
    {u"adUnsignedBigInt", 21},
    {u"adSingle", 4},
    {u"adDouble", 5},
    {u"adCurrency", 6},
    {u"adDecimal", 14},
    {u"adNumeric", 131},
    {u"adBoolean", 11},
    {u"adError", 10},
    {u"adUserDefined", 132},
    {u"adVariant", 12},
    {u"adIDispatch", 9},
    {u"adIUnknown", 13},
    {u"adGUID", 72},
    {u"adDate", 7},
    {u"adDBDate", 133},
    {u"adDBTime", 134},
    {u"adDBTimeStamp", 135},
    {u"adBSTR", 8},
    {u"adChar", 129},
    {u"adVarChar", 200},
    {u"adLongVarChar", 201},
    {u"adWChar", 130},
    {u"adVarWChar", 202},
    {u"adLongVarWChar", 203},
    {u"adBinary", 128},
    {u"adVarBinary", 204},
    {u"adLongVarBinary", 205},
    {u"adChapter", 136},
    {u"adFileTime", 64},
    {u"adPropVariant", 138},
    {u"adVarNumeric", 139},
    {u"adArray", 0x2000},
    // FieldAttributeEnum
    {u"adFldUnspecified", -1},
    {u"adFldMayDefer", 0x2},
    {u"adFldUpdatable", 0x4},
    {u"adFldUnknownUpdatable", 0x8},
    {u"adFldFixed", 0x10},
    {u"adFldIsNullable", 0x20},
    {u"adFldMayBeNull", 0x40},
    {u"adFldLong", 0x80},
    {u"adFldRowID", 0x100},
    {u"adFldRowVersion", 0x200},
    {u"adFldCacheDeferred", 0x1000},
    {u"adFldIsChapter", 0x2000},
    {u"adFldNegativeScale", 0x4000},
    {u"adFldKeyColumn", 0x8000},
    {u"adFldIsRowURL", 0x10000},
    {u"adFldIsDefaultStream", 0x20000},
    {u"adFldIsCollection", 0x40000},
    // EditModeEnum
    {u"adEditNone", 0},
    {u"adEditInProgress", 1},
    {u"adEditAdd", 2},
    {u"adEditDelete", 4},
    // RecordStatusEnum
    {u"adRecOK", 0},
    {u"adRecNew", 1},
    {u"adRecModified", 2},
    {u"adRecDeleted", 4},
    {u"adRecUnmodified", 8},
    {u"adRecInvalid", 0x10},
    {u"adRecMultipleChanges", 0x40},
    {u"adRecPendingChanges", 0x80},
    {u"adRecCanceled", 0x100},
    {u"adRecCantRelease", 0x400},
    {u"adRecConcurrencyViolation", 0x800},
    {u"adRecIntegrityViolation", 0x1000},
    {u"adRecMaxChangesExceeded", 0x2000},
    {u"adRecObjectOpen", 0x4000},
    {u"adRecOutOfMemory", 0x8000},
    {u"adRecPermissionDenied", 0x10000},
    {u"adRecSchemaViolation", 0x20000},
    {u"adRecDBDeleted", 0x40000},
    // GetRowsOptionEnum, PositionEnum, BookmarkEnum
    {u"adGetRowsRest", -1},
    {u"adPosUnknown", -1},
    {u"adPosBOF", -2},
    {u"adPosEOF", -3},
    {u"adBookmarkCurrent", 0},
    {u"adBookmarkFirst", 1},
    {u"adBookmarkLast", 2},
    // MarshalOptionsEnum, AffectEnum, ResyncEnum
    {u"adMarshalAll", 0},
    {u"adMarshalModifiedOnly", 1},
    {u"adAffectCurrent", 1},
    {u"adAffectGroup", 2},
    {u"adAffectAll", 3},
    {u"adAffectAllChapters", 4},
    {u"adResyncUnderlyingValues", 1},
    {u"adResyncAllValues", 2},
    // CompareEnum, FilterGroupEnum, SearchDirectionEnum
    {u"adCompareLessThan", 0},
    {u"adCompareEqual", 1},
    {u"adCompareGreaterThan", 2},
    {u"adCompareNotEqual", 3},
    {u"adCompareNotComparable", 4},
    {u"adFilterNone", 0},
    {u"adFilterPendingRecords", 1},
    {u"adFilterAffectedRecords", 2},
    {u"adFilterFetchedRecords", 3},
    {u"adFilterPredicate", 4},
    {u"adFilterConflictingRecords", 5},
    {u"adSearchForward", 1},
    {u"adSearchBackward", -1},
    // PersistFormatEnum, StringFormatEnum
    {u"adPersistADTG", 0},
    {u"adPersistXML", 1},
    {u"adClipString", 2},
    // ConnectPromptEnum, ConnectModeEnum
    {u"adPromptAlways", 1},
    {u"adPromptComplete", 2},
    {u"adPromptCompleteRequired", 3},
    {u"adPromptNever", 4},
    {u"adModeUnknown", 0},
    {u"adModeRead", 1},
    {u"adModeWrite", 2},
    {u"adModeReadWrite", 3},
    {u"adModeShareDenyRead", 4},
    {u"adModeShareDenyWrite", 8},
    {u"adModeShareExclusive", 0xc},
    {u"adModeShareDenyNone", 0x10},
    {u"adModeRecursive", 0x400000},
    // IsolationLevelEnum, XactAttributeEnum
    {u"adXactUnspecified", -1},
    {u"adXactChaos", 0x10},
    {u"adXactReadUncommitted", 0x100},
    {u"adXactBrowse", 0x100},
    {u"adXactCursorStability", 0x1000},
    {u"adXactReadCommitted", 0x1000},
    {u"adXactRepeatableRead", 0x10000},
    {u"adXactSerializable", 0x100000},
    {u"adXactIsolated", 0x100000},
    {u"adXactCommitRetaining", 0x20000},
    {u"adXactAbortRetaining", 0x40000},
    // PropertyAttributesEnum
    {u"adPropNotSupported", 0},
    {u"adPropRequired", 1},
    {u"adPropOptional", 2},
    {u"adPropRead", 0x200},
    {u"adPropWrite", 0x400},
    // CommandTypeEnum
    {u"adCmdUnspecified", -1},
    {u"adCmdUnknown", 8},
    {u"adCmdText", 1},
    {u"adCmdTable", 2},
    {u"adCmdStoredProc", 4},
    {u"adCmdFile", 0x100},
    {u"adCmdTableDirect", 0x200},
    // EventStatusEnum, EventReasonEnum
    {u"adStatusOK", 1},
    {u"adStatusErrorsOccurred", 2},
    {u"adStatusCantDeny", 3},
    {u"adStatusCancel", 4},
    {u"adStatusUnwantedEvent", 5},
    // SchemaEnum
    {u"adSchemaProviderSpecific", -1},
    {u"adSchemaAsserts", 0},
    {u"adSchemaCatalogs", 1},
    {u"adSchemaCharacterSets", 2},
    {u"adSchemaCollations", 3},
    {u"adSchemaColumns", 4},
    {u"adSchemaCheckConstraints", 5},
    {u"adSchemaConstraintColumnUsage", 6},
    {u"adSchemaConstraintTableUsage", 7},
    {u"adSchemaKeyColumnUsage", 8},
    {u"adSchemaReferentialConstraints", 9},
    {u"adSchemaTableConstraints", 10},
    {u"adSchemaColumnsDomainUsage", 11},
    {u"adSchemaIndexes", 12},
    {u"adSchemaColumnPrivileges", 13},
    {u"adSchemaTablePrivileges", 14},
    {u"adSchemaUsagePrivileges", 15},
    {u"adSchemaProcedures", 16},
    {u"adSchemaSchemata", 17},
    {u"adSchemaSQLLanguages", 18},
    {u"adSchemaStatistics", 19},
    {u"adSchemaTables", 20},
    {u"adSchemaTranslations", 21},
    {u"adSchemaProviderTypes", 22},
    {u"adSchemaViews", 23},
    {u"adSchemaViewColumnUsage", 24},
    {u"adSchemaViewTableUsage", 25},
    {u"adSchemaProcedureParameters", 26},
    {u"adSchemaForeignKeys", 27},
    {u"adSchemaPrimaryKeys", 28},
    {u"adSchemaProcedureColumns", 29},
    // ParameterAttributesEnum, ParameterDirectionEnum
    {u"adParamSigned", 0x10},
    {u"adParamNullable", 0x40},
    {u"adParamLong", 0x80},
    {u"adParamUnknown", 0},
    {u"adParamInput", 1},
    {u"adParamOutput", 2},
    {u"adParamInputOutput", 3},
    {u"adParamReturnValue", 4},
    // StreamTypeEnum, LineSeparatorEnum, StreamOpenOptionsEnum and the rest of the Stream's
    {u"adTypeBinary", 1},
    {u"adTypeText", 2},
    {u"adLF", 10},
    {u"adCR", 13},
    {u"adCRLF", -1},
    {u"adOpenStreamUnspecified", -1},
    {u"adOpenStreamAsync", 1},
    {u"adOpenStreamFromRecord", 4},
    {u"adWriteChar", 0},
    {u"adWriteLine", 1},
    {u"adSaveCreateNotExist", 1},
    {u"adSaveCreateOverWrite", 2},
    {u"adReadAll", -1},
    {u"adReadLine", -2},
    {u"stWriteChar", 0},
    {u"stWriteLine", 1},
    // SeekEnum
    {u"adSeekFirstEQ", 1},
    {u"adSeekLastEQ", 2},
    {u"adSeekAfterEQ", 4},
    {u"adSeekAfter", 8},
    {u"adSeekBeforeEQ", 0x10},
    {u"adSeekBefore", 0x20},
    // ErrorValueEnum
    {u"adErrProviderFailed", 0xbb8},
    {u"adErrInvalidArgument", 0xbb9},
    {u"adErrOpeningFile", 0xbba},
    {u"adErrReadFile", 0xbbb},
    {u"adErrWriteFile", 0xbbc},
    {u"adErrNoCurrentRecord", 0xbcd},
    {u"adErrIllegalOperation", 0xc93},
    {u"adErrCantChangeProvider", 0xc94},
    {u"adErrInTransaction", 0xcae},
    {u"adErrFeatureNotAvailable", 0xcb3},
    {u"adErrItemNotFound", 0xcc1},
    {u"adErrObjectInCollection", 0xd27},
    {u"adErrObjectNotSet", 0xd5c},
    {u"adErrDataConversion", 0xd5d},
    {u"adErrObjectClosed", 0xe78},
    {u"adErrObjectOpen", 0xe79},
    {u"adErrProviderNotFound", 0xe7a},
    {u"adErrBoundToCommand", 0xe7b},
    {u"adErrInvalidParamInfo", 0xe7c},
    {u"adErrInvalidConnection", 0xe7d},
    {u"adErrNotReentrant", 0xe7e},
    {u"adErrStillExecuting", 0xe7f},
    {u"adErrOperationCancelled", 0xe80},
    {u"adErrStillConnecting", 0xe81},
    {u"adErrInvalidTransaction", 0xe82},
    {u"adErrUnsafeOperation", 0xe84},
};

}  // namespace

std::span<const AdoConstant> AdoConstants() {
  return kConstants;
}

std::optional<int32_t> FindAdoConstant(StringView name) {
  static const auto* const index = [] {
    auto* map = new std::unordered_map<StringView, int32_t, NoCaseHash, NoCaseEqual>();
    for (const AdoConstant& c : kConstants)
      map->emplace(StringView(c.name), c.value);
    return map;
  }();
  const auto it = index->find(name);
  if (it == index->end()) return std::nullopt;
  return it->second;
}

String AdoConstantsInclude() {
  String text(u"<%\r\n' ADO constants for pages that name them\r\n");
  std::unordered_map<StringView, bool, NoCaseHash, NoCaseEqual> seen;
  for (const AdoConstant& c : kConstants) {
    if (!seen.emplace(StringView(c.name), true).second) continue;  // a Const twice won't compile
    text.Append(u"Const ");
    text.Append(c.name);
    text.Append(u" = ");
    text.Append(NumberText(c.value));
    text.Append(u"\r\n");
  }
  text.Append(u"%>\r\n");
  return text;
}

}  // namespace qv::ado
