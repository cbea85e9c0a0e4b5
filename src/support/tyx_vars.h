// The library-wide shared variables: the product's constants, the one failure text ProjErr,
// the shared copies of project settings that table and field defaults read, the folders and
// counters of a generation run, and the slots of the shared objects. One instance per process,
// reached through Vars(); the engine runs on one thread, so nothing here is locked.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "automation/object.h"
#include "automation/ref.h"
#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

class cRegistry;

// Provides the system script text for a two-character language code ("VB", "VL"); the script
// subsystem installs it. Until then GetSysCode answers "".
using SysCodeProvider = std::function<String(StringView language)>;

// The build's version as four numbers joined by ".": what GetVer reports for the library.
String EngineVersionText();

struct TyxVars {
  // ---- Constants of the product (fixed when the root is created) ----
  String ProductType = u"ASP";          // kind of application generated
  String ProductCode = u"ASP";          // handed to the project converter
  String ProductName = u"Quorvex";      // registry paths, cache file, file checks
  String ProductTitle = u"Quorvex";     // prefix of messages, caption of every dialog
  String ProductVersion = u"5.3";       // registry paths, cache file
  String MinVersion = u"5.0";           // oldest project file / template package accepted
  String MinTemplateVersion = u"5.0";   // the generation driver's name for the same bound
  String ScriptLanguageName = u"ASP";   // shown in the last stage's title
  String DefaultExt = u"asp";           // replaces "*" in a control's output extension
  String DefaultPage = u"default.asp";  // "default." + DefaultExt
  // Registry paths, kept in the Windows form with backslashes: the settings store uses them
  // as its key names.
  String SettingsKey = u"Software\\Quorvex\\5.3\\Settings";
  String ExtensionsKey = u"Software\\Quorvex\\5.3\\Extensions";
  String OdbcIniKey = u"Software\\ODBC\\ODBC.INI";
  // The user's documents folder (SpecialFolder 5); filled when the root is created.
  String PersonalFolder;
  // The engine's file version, "5.3.<patch>.<build>" (GetVer's four numbers joined by ".").
  String LibVersion = EngineVersionText();

  // ---- The one failure text of the system; empty means no error ----
  String ProjErr;

  // ---- Shared copies of project settings (refreshed by LoadDB, LoadTable, Load, LoadDefault) ----
  String SqlQuoteStyle;           // the project's SQLQuote: "Square Bracket", "Double Quote", ...
  int16_t DefaultDateFormat = 5;  // defaultDateFormat when numeric, else 0
  String SecDefault;              // the database's SecDefault, given to each new table
  bool DynamicLoadDB = false;
  int16_t RptIndent = 0;
  int16_t RecPerPage = 0;
  String RecPerPageList;
  bool ExportHtml = false;
  bool ExportWord = false;
  bool ExportExcel = false;
  bool ExportXml = false;
  bool ExportCsv = false;
  int16_t RecPerRow = 0;
  bool MultiDelete = false;
  int16_t SortType = 0;
  int16_t PagerStyle = 0;
  bool TopPageLink = false;
  bool LinkOnLeft = false;
  bool InlineDelete = false;
  int16_t RepeatColumns = 0;
  String Destination;  // the project's output folder, for the script host

  // ---- Data source of the moment ----
  String CurrentDbmsName;     // DBDBMSName of the database: decides DatabaseKind
  String CurrentTableSchema;  // TABLE_SCHEMA of the schema row at hand
  String OracleConnStr;       // the Oracle connection form, for generated code
  String StatusTitle;         // title text of the status window

  // ---- System code page (LoadSystemCharset) ----
  Variant SystemCodePage;  // the code page as text: "65001" here
  String SystemCharset;    // its character set name: "utf-8"

  // ---- Quote pairs (SetQuoteChars); both pairs always hold the same two texts ----
  String TableQuoteOpen;  // read by QuoteSqlName
  String TableQuoteClose;
  Variant DbQuoteOpen;  // read by QuoteDbName; DBQuoteS/DBQuoteE take these
  Variant DbQuoteClose;

  // ---- Folders and files of a generation run ----
  String TemplateName;              // file name part of the project's Template
  String WorkFolder;                // this template's folder below the documents folder
  String TemplateFolder;            // where the template package lies unpacked
  String ExtensionsFolder;          // WorkFolder + "/extensions"
  String TempFolder;                // WorkFolder + "/temp": the translated scripts
  String UserCodeFile;              // the user's script file (setting USERCODE)
  String DefaultLangFile;           // the language file of the setting Language
  String LangFile;                  // the language file of the run
  int32_t ScriptEngineTimeout = 0;  // milliseconds; 0 = no limit
  int32_t SessionsDone = 0;         // sessions translated so far, for the progress bar
  int32_t SessionsTotal = 0;        // sessions of the controls that need translating
  int32_t FilesUnpacked = 0;        // files the run took out of packages
  int32_t ControlsTranslated = 0;   // controls the run translated

  // ---- Overwrite state of one RunControls ----
  String OverwriteChoice;      // "", or for the rest of the run "O" all, "S" skip all, "C" cancel
  bool OverwriteThis = false;  // the answer for the file at hand
  String PromptFile;           // the file named in the overwrite question; "" for a folder
  Variant PromptFolder;        // the folder named in the overwrite question; "" for a file
  // A standing answer the host gives before the run ("O" or "S", as OverwriteChoice), which
  // each RunControls starts from instead of ""; "" lets the project's settings decide.
  String OverwritePreset;

  // ---- Page counters and the page at hand ----
  int32_t PagesTotal = 0;  // table pages of the run
  int32_t PagesDone = 0;
  String GeneratedFile;  // output file name of the page at hand
  String CurCtrlID;      // CtrlID of the control at hand
  String CurTagExt;      // its CtrlTagExt + "_", or ""
  // What the run did to the output, for the host's summary: pages and stylesheets written,
  // files and folders copied, existing files left as they were, backups made.
  int32_t FilesWritten = 0;
  int32_t FilesCopied = 0;
  int32_t FilesSkipped = 0;
  int32_t FilesBackedUp = 0;

  // ---- Registry access (ReadRegValue/WriteRegValue) ----
  int32_t RegValueType = 0;             // the type of the value that ReadRegValue read last
  std::shared_ptr<cRegistry> Registry;  // the shared cursor, created on first use

  // ---- Shared objects; higher layers keep their own types behind these slots ----
  Ref<Object> TheScript;    // the script host of the run (TyScript)
  Ref<Object> TheCache;     // the generation cache (TyxCache)
  Ref<Object> TheLang;      // the language file (TyxLanguage)
  Ref<Object> TheControls;  // the project's control list (TyxControls) of the run, or null
  Ref<Object> Status;       // the status surface (TyxStatus), created on first use
  // What the host hands to the templates of its runs as CHARTS (charts live outside the
  // project); null gives them Nothing.
  Ref<Object> HostCharts;

  // ---- Hooks that higher layers install ----
  SysCodeProvider GetCode;  // the system script text behind TyxStatus.GetSysCode
};

// The one instance of the shared variables.
TyxVars& Vars();

// Puts every variable back to its initial value (the constants included). For hosts that
// start over, and for tests.
void ResetVars();

}  // namespace qv
