// The 99 settings of the project, in the order that is also the order of the attributes of
// Project in the project file. Every setting is saved to the file and synchronised.
// X(Name, Type, Registry, File, Sync); see bag_accessors.h.
#pragma once

#include "model/bag_accessors.h"

// clang-format off
#define QV_PROJECT_SETTINGS(X) \
  X(ProjName, String, QV_REG_NONE, 1, 1) \
  X(ProjMode, String, QV_REG_TEXT, 1, 1) \
  X(SQLQuote, String, QV_REG_NONE, 1, 1) \
  X(CodePage, Long, QV_REG_NUMBER, 1, 1) \
  X(LCID, Long, QV_REG_NUMBER, 1, 1) \
  X(Cache, Boolean, QV_REG_TEXT, 1, 1) \
  X(IncFiles, String, QV_REG_NONE, 1, 1) \
  X(IncVirtuals, String, QV_REG_NONE, 1, 1) \
  X(CharSet, String, QV_REG_TEXT, 1, 1) \
  X(CSS, String, QV_REG_TEXT, 1, 1) \
  X(OutputNameType, String, QV_REG_TEXT, 1, 1) \
  X(OutputNameExt, String, QV_REG_TEXT, 1, 1) \
  X(OutputNameLCase, Boolean, QV_REG_TEXT, 1, 1) \
  X(BodyTitle, String, QV_REG_TEXT, 1, 1) \
  X(BodyFont, String, QV_REG_TEXT, 1, 1) \
  X(BodySize, String, QV_REG_TEXT, 1, 1) \
  X(BodyBgColor, String, QV_REG_TEXT, 1, 1) \
  X(BodyTextColor, String, QV_REG_TEXT, 1, 1) \
  X(BodyLnkColor, String, QV_REG_TEXT, 1, 1) \
  X(BodyVLnkColor, String, QV_REG_TEXT, 1, 1) \
  X(BodyALnkColor, String, QV_REG_TEXT, 1, 1) \
  X(BodyLeftMargin, Integer, QV_REG_NUMBER, 1, 1) \
  X(BodyTopMargin, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblWidth, String, QV_REG_TEXT, 1, 1) \
  X(TblPadding, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblBorder, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblSpacing, Integer, QV_REG_NUMBER, 1, 1) \
  X(TblBgColor, String, QV_REG_TEXT, 1, 1) \
  X(TblHdrFontColor, String, QV_REG_TEXT, 1, 1) \
  X(TblHdrColor, String, QV_REG_TEXT, 1, 1) \
  X(TblAltColor, Boolean, QV_REG_TEXT, 1, 1) \
  X(TblAltColor1, String, QV_REG_TEXT, 1, 1) \
  X(TblAltColor2, String, QV_REG_TEXT, 1, 1) \
  X(Template, String, QV_REG_TEXT, 1, 1) \
  X(Destination, String, QV_REG_NONE, 1, 1) \
  X(SecType, String, QV_REG_NONE, 1, 1) \
  X(SecLoginID, String, QV_REG_NONE, 1, 1) \
  X(SecPasswd, String, QV_REG_NONE, 1, 1) \
  X(SecTbl, String, QV_REG_NONE, 1, 1) \
  X(SecLoginIDFld, String, QV_REG_NONE, 1, 1) \
  X(SecPasswdFld, String, QV_REG_NONE, 1, 1) \
  X(SecEmailFld, String, QV_REG_NONE, 1, 1) \
  X(SecForgetPwdPage, Boolean, QV_REG_NONE, 1, 1) \
  X(SecChangePwdPage, Boolean, QV_REG_NONE, 1, 1) \
  X(SecChangeEmail, Boolean, QV_REG_NONE, 1, 1) \
  X(SecRegisterPage, Boolean, QV_REG_NONE, 1, 1) \
  X(SecRegisterEmail, Boolean, QV_REG_NONE, 1, 1) \
  X(SecSenderEmail, String, QV_REG_NONE, 1, 1) \
  X(SmtpServer, String, QV_REG_TEXT, 1, 1) \
  X(SmtpServerPort, Long, QV_REG_NUMBER, 1, 1) \
  X(MemoCRLFReplace, Boolean, QV_REG_TEXT, 1, 1) \
  X(SessTimeOut, Integer, QV_REG_NUMBER, 1, 1) \
  X(ServerScriptTimeout, Integer, QV_REG_NUMBER, 1, 1) \
  X(defaultDateFormat, Integer, QV_REG_TEXT, 1, 1) \
  X(DateSeparator, String, QV_REG_TEXT, 1, 1) \
  X(XMLEncoding, String, QV_REG_TEXT, 1, 1) \
  X(HighlightColor, String, QV_REG_TEXT, 1, 1) \
  X(SelectColor, String, QV_REG_TEXT, 1, 1) \
  X(EditBackColor, String, QV_REG_TEXT, 1, 1) \
  X(EditForeColor, String, QV_REG_TEXT, 1, 1) \
  X(PagerBackColor, String, QV_REG_TEXT, 1, 1) \
  X(FooterBackColor, String, QV_REG_TEXT, 1, 1) \
  X(UploadPath, String, QV_REG_TEXT, 1, 1) \
  X(UploadAllowedFileExt, String, QV_REG_TEXT, 1, 1) \
  X(UseCss, Boolean, QV_REG_TEXT, 1, 1) \
  X(CssStyles, String, QV_REG_NONE, 1, 1) \
  X(AutoSync, Boolean, QV_REG_NONE, 1, 1) \
  X(CreateVDir, Boolean, QV_REG_NONE, 1, 1) \
  X(AutoBrowse, Boolean, QV_REG_NONE, 1, 1) \
  X(BodyStyle, String, QV_REG_NONE, 1, 1) \
  X(OtherGen, Boolean, QV_REG_NONE, 1, 1) \
  X(OtherOverwrite, Boolean, QV_REG_NONE, 1, 1) \
  X(PromptOnOverwrite, Boolean, QV_REG_NONE, 1, 1) \
  X(DynamicLoadDB, Boolean, QV_REG_TEXT, 1, 1) \
  X(OptionExplicit, Boolean, QV_REG_TEXT, 1, 1) \
  X(RptIndent, Integer, QV_REG_NUMBER, 1, 1) \
  X(RecPerPage, Integer, QV_REG_NUMBER, 1, 1) \
  X(RecPerPageList, String, QV_REG_TEXT, 1, 1) \
  X(ExportHtml, Boolean, QV_REG_TEXT, 1, 1) \
  X(ExportWord, Boolean, QV_REG_TEXT, 1, 1) \
  X(ExportExcel, Boolean, QV_REG_TEXT, 1, 1) \
  X(ExportXml, Boolean, QV_REG_TEXT, 1, 1) \
  X(ExportCsv, Boolean, QV_REG_TEXT, 1, 1) \
  X(RecPerRow, Integer, QV_REG_NUMBER, 1, 1) \
  X(MultiDelete, Boolean, QV_REG_TEXT, 1, 1) \
  X(SortType, Integer, QV_REG_NUMBER, 1, 1) \
  X(PagerStyle, Integer, QV_REG_NUMBER, 1, 1) \
  X(TopPageLink, Boolean, QV_REG_TEXT, 1, 1) \
  X(LinkOnLeft, Boolean, QV_REG_TEXT, 1, 1) \
  X(InlineDelete, Boolean, QV_REG_TEXT, 1, 1) \
  X(AppRootFolder, String, QV_REG_TEXT, 1, 1) \
  X(RepeatColumns, Integer, QV_REG_NUMBER, 1, 1) \
  X(EmailComponent, String, QV_REG_TEXT, 1, 1) \
  X(RecipientEmail, String, QV_REG_TEXT, 1, 1) \
  X(DeleteUploadedFile, Boolean, QV_REG_TEXT, 1, 1) \
  X(SMTPServerUsername, String, QV_REG_TEXT, 1, 1) \
  X(SMTPServerPassword, String, QV_REG_TEXT, 1, 1) \
  X(ShowBlankListPage, Boolean, QV_REG_TEXT, 1, 1) \
  X(AuditTrailPath, String, QV_REG_TEXT, 1, 1)
// clang-format on
