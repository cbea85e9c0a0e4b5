// Saved defaults over the settings store. The order of LoadDefault matters: five settings are
// saved and read like the others and then overwritten by the fixed values of steps 8 and 10,
// so they never come back from the store.
#include "persistence/saved_defaults.h"

#include <vector>

#include "automation/convert.h"
#include "model/tyx.h"
#include "support/common.h"
#include "support/registry.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

constexpr StringView kUser = u"HKCU";
constexpr StringView kMachine = u"HKLM";

TyxDatabase* TheDatabase(Tyx& tyx) {
  if (tyx.DBCnt() == 0) return nullptr;
  const CSuperCollection& dbs = tyx.Databases().collection();
  const Variant* v = dbs.SlotValue(dbs.SlotAt(dbs.BaseIndex()));
  return v && v->is_object() ? static_cast<TyxDatabase*>(v->as_object()) : nullptr;
}

void LoadBag(const TyProperties& bag, StringView key) {
  bag.ForEach([&](TyProperty& p) {
    if (!p.RegSave()) return;
    p.SetValue(ToSettingValue(ReadRegValue(kUser, key, p.Name()), p.DataType()));
  });
}

void SaveBag(const TyProperties& bag, StringView key) {
  bag.ForEach([&](TyProperty& p) {
    if (p.RegSave()) WriteRegValue(kUser, key, p.Name(), p.RegFormat(), p.Value());
  });
}

bool IsNumericValue(const Variant& v) {
  if (v.is_empty() || v.is_numeric_type()) return true;
  return v.is_string() && ParseNumberText(v.as_string()).has_value();
}

}  // namespace

String StripQuotes(StringView text) {
  StringView s = TrimBlanks(text);
  while (s.size() >= 2 && (s.front() == u'"' || s.front() == u'\'') && s.back() == s.front()) {
    s = TrimBlanks(s.substr(1, s.size() - 2));
  }
  return String(s);
}

Variant ToSettingValue(const Variant& value, StringView data_type) {
  const String type = ToLower(data_type);
  try {
    if (type == u"boolean") return Variant(ToBool(value));
    if (type == u"integer") return Variant(ToInteger(value));
    if (type == u"long") return Variant(ToLong(value));
    if (type == u"string") return Variant(StripQuotes(ToString(value)));
  } catch (const Error&) {
    return Variant();
  }
  return value;
}

void LoadDefault(Tyx& tyx) {
  TyxVars& vars = Vars();
  const String key = vars.SettingsKey;
  LoadBag(tyx.Properties(), key);
  if (TyxDatabase* db = TheDatabase(tyx)) LoadBag(db->Properties(), key);

  tyx.Language = ToString(ToSettingValue(ReadRegValue(kUser, key, u"Language"), u"String"));
  const Variant backup = ToSettingValue(ReadRegValue(kUser, key, u"BackupFile"), u"Boolean");
  tyx.BackupFile = backup.is_empty() ? false : backup.as_bool();
  const Variant date_format = tyx.Properties().Find(u"defaultDateFormat")->Value();
  vars.DefaultDateFormat = IsNumericValue(date_format) ? ToInteger(date_format) : int16_t{0};
  tyx.USERCODE = ToString(ToSettingValue(ReadRegValue(kUser, key, u"USERCODE"), u"String"));
  const Variant timeout = ToSettingValue(ReadRegValue(kUser, key, u"ScriptEngineTimeout"), u"Long");
  vars.ScriptEngineTimeout = timeout.is_empty() ? 0 : timeout.as_long();

  tyx.SetIncFiles(u"");
  tyx.SetIncVirtuals(u"");
  tyx.SetSecType(u"None");
  tyx.SetSecLoginID(u"");
  tyx.SetSecPasswd(u"");
  tyx.SetSecTbl(u"");
  tyx.SetSecLoginIDFld(u"");
  tyx.SetSecPasswdFld(u"");
  tyx.SetAutoSync(true);
  tyx.SetAutoBrowse(false);
  tyx.SetCreateVDir(false);
  tyx.SetSessTimeOut(0);

  if (tyx.XMLEncoding().empty()) {
    LoadSystemCharset();
    tyx.SetXMLEncoding(vars.SystemCharset);
  }

  tyx.SetOtherGen(true);
  tyx.SetOtherOverwrite(true);
  tyx.SetPromptOnOverwrite(true);
  tyx.SetLinkOnLeft(false);
  tyx.SetTopPageLink(false);
  tyx.SetPagerStyle(2);
  tyx.SetMultiDelete(false);

  const Variant threshold =
      ToSettingValue(ReadRegValue(kUser, key, u"UnloadThresholdCount"), u"Long");
  const int32_t count = threshold.is_empty() ? 0 : threshold.as_long();
  tyx.UnloadThresholdCount = count < 1 ? 20 : count;
}

void SaveDefault(Tyx& tyx) {
  const TyxVars& vars = Vars();
  const String key = vars.SettingsKey;
  SaveBag(tyx.Properties(), key);
  if (TyxDatabase* db = TheDatabase(tyx)) SaveBag(db->Properties(), key);

  WriteRegValue(kUser, key, u"Language", kRegSz, Variant(tyx.Language));
  WriteRegValue(kUser, key, u"BackupFile", kRegSz, Variant(ToString(Variant(tyx.BackupFile))));
  WriteRegValue(kUser, key, u"USERCODE", kRegSz, Variant(tyx.USERCODE));
  WriteRegValue(kUser, key, u"ScriptEngineTimeout", kRegDword, Variant(vars.ScriptEngineTimeout));

  TyxExtensions& extensions = tyx.Extensions();
  const int32_t count = extensions.Count();
  for (int32_t i = 1; i <= count; ++i) {
    Ref<TyxExtension> e = extensions.Seq(static_cast<int16_t>(i));
    if (!e) continue;
    WriteRegValue(kUser, vars.ExtensionsKey, e->Name(), kRegSz, Variant(e->Template()));
  }
}

void CopyRegistryTree(StringView key) {
  cRegistry machine;
  machine.ClassKey = kHkeyLocalMachine;
  machine.SectionKey = String(key);
  std::vector<String> names;
  int32_t count = 0;
  machine.EnumerateValues(names, count);
  for (const String& name : names) {
    const Variant value = ReadRegValue(kMachine, key, name);
    WriteRegValue(kUser, key, name, Vars().RegValueType, value);
  }
  std::vector<String> sections;
  machine.EnumerateSections(sections, count);
  for (const String& section : sections)
    CopyRegistryTree(String(key) + u"\\" + section);
}

void SeedUserRegistry() {
  CopyRegistryTree(Vars().SettingsKey);
  CopyRegistryTree(Vars().ExtensionsKey);
}

}  // namespace qv
