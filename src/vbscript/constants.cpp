// The named constants of the language. Whole numbers are Integers when they fit 16 bits and
// Longs otherwise; the colours and the vbMsgBox flags are Longs whatever their size, as Windows
// types them.
#include <unordered_map>

#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

struct NumberConstant {
  std::u16string_view name;
  int32_t value;
  bool is_long;
};

constexpr NumberConstant kNumbers[] = {
    {u"vbBinaryCompare", 0, false},
    {u"vbTextCompare", 1, false},
    {u"vbDatabaseCompare", 2, false},
    {u"vbUseDefault", -2, false},
    {u"vbTrue", -1, false},
    {u"vbFalse", 0, false},
    {u"vbEmpty", 0, false},
    {u"vbNull", 1, false},
    {u"vbInteger", 2, false},
    {u"vbLong", 3, false},
    {u"vbSingle", 4, false},
    {u"vbDouble", 5, false},
    {u"vbCurrency", 6, false},
    {u"vbDate", 7, false},
    {u"vbString", 8, false},
    {u"vbObject", 9, false},
    {u"vbError", 10, false},
    {u"vbBoolean", 11, false},
    {u"vbVariant", 12, false},
    {u"vbDataObject", 13, false},
    {u"vbDecimal", 14, false},
    {u"vbByte", 17, false},
    {u"vbArray", 8192, false},
    {u"vbOKOnly", 0, false},
    {u"vbOKCancel", 1, false},
    {u"vbAbortRetryIgnore", 2, false},
    {u"vbYesNoCancel", 3, false},
    {u"vbYesNo", 4, false},
    {u"vbRetryCancel", 5, false},
    {u"vbCritical", 16, false},
    {u"vbQuestion", 32, false},
    {u"vbExclamation", 48, false},
    {u"vbInformation", 64, false},
    {u"vbDefaultButton1", 0, false},
    {u"vbDefaultButton2", 256, false},
    {u"vbDefaultButton3", 512, false},
    {u"vbDefaultButton4", 768, false},
    {u"vbApplicationModal", 0, false},
    {u"vbSystemModal", 4096, false},
    {u"vbMsgBoxHelpButton", 16384, true},
    {u"vbMsgBoxSetForeground", 65536, true},
    {u"vbMsgBoxRight", 524288, true},
    {u"vbMsgBoxRtlReading", 1048576, true},
    {u"vbOK", 1, false},
    {u"vbCancel", 2, false},
    {u"vbAbort", 3, false},
    {u"vbRetry", 4, false},
    {u"vbIgnore", 5, false},
    {u"vbYes", 6, false},
    {u"vbNo", 7, false},
    {u"vbBlack", 0x000000, true},
    {u"vbRed", 0x0000FF, true},
    {u"vbGreen", 0x00FF00, true},
    {u"vbYellow", 0x00FFFF, true},
    {u"vbBlue", 0xFF0000, true},
    {u"vbMagenta", 0xFF00FF, true},
    {u"vbCyan", 0xFFFF00, true},
    {u"vbWhite", 0xFFFFFF, true},
    {u"vbUseSystemDayOfWeek", 0, false},
    {u"vbSunday", 1, false},
    {u"vbMonday", 2, false},
    {u"vbTuesday", 3, false},
    {u"vbWednesday", 4, false},
    {u"vbThursday", 5, false},
    {u"vbFriday", 6, false},
    {u"vbSaturday", 7, false},
    {u"vbUseSystem", 0, false},
    {u"vbFirstJan1", 1, false},
    {u"vbFirstFourDays", 2, false},
    {u"vbFirstFullWeek", 3, false},
    {u"vbGeneralDate", 0, false},
    {u"vbLongDate", 1, false},
    {u"vbShortDate", 2, false},
    {u"vbLongTime", 3, false},
    {u"vbShortTime", 4, false},
    {u"vbObjectError", -2147221504, true},
};

struct TextConstant {
  std::u16string_view name;
  std::u16string_view value;
};

constexpr char16_t kNullChar[] = {0};

constexpr TextConstant kTexts[] = {
    {u"vbCr", u"\r"},          {u"vbLf", u"\n"},       {u"vbCrLf", u"\r\n"},
    {u"vbNewLine", u"\r\n"},   {u"vbTab", u"\t"},      {u"vbFormFeed", u"\f"},
    {u"vbVerticalTab", u"\v"}, {u"vbNullString", u""}, {u"vbNullChar", {kNullChar, 1}},
};

using ConstantMap = std::unordered_map<StringView, Variant, NoCaseHash, NoCaseEqual>;

ConstantMap BuildConstants() {
  ConstantMap map;
  for (const NumberConstant& c : kNumbers) {
    map.emplace(c.name, c.is_long ? Variant(c.value) : Variant(static_cast<int16_t>(c.value)));
  }
  for (const TextConstant& c : kTexts)
    map.emplace(c.name, Variant(String(c.value)));
  return map;
}

}  // namespace

std::optional<Variant> FindConstant(StringView name) {
  static const ConstantMap constants = BuildConstants();
  const auto it = constants.find(name);
  if (it == constants.end()) return std::nullopt;
  // Engines on other threads read this table too: hand out a text of the caller's own rather
  // than a share of the table's buffer, whose count is no atomic.
  if (it->second.is_string()) return Variant(String(it->second.as_string().view()));
  return it->second;
}

}  // namespace qv::vbs
