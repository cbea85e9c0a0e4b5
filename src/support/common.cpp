// The common helpers: captions, sorted key lists, percentages, fixed texts, registry values by
// short root name, the user's folders and the character set of a code page.
#include "support/common.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "automation/convert.h"
#include "automation/date_time.h"
#include "automation/error.h"
#include "support/data_folder.h"
#include "support/registry.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

bool IsCaptionSeparator(Char c) {
  return c == u' ' || c == u'-' || c == u'_';
}

}  // namespace

String ToCaption(StringView name) {
  String out;
  out.Reserve(name.size() + 8);
  bool previous_upper = true;
  bool previous_boundary = true;  // "a separator came before" the first character
  for (const Char c : name) {
    bool boundary;
    if (IsCaptionSeparator(c)) {
      boundary = true;
      previous_upper = true;
    } else {
      const bool upper = ToUpperChar(c) == c;
      boundary = upper && !previous_upper;
      previous_upper = upper;
    }
    if (boundary && !previous_boundary) out.Append(u' ');
    if (!IsCaptionSeparator(c)) out.Append(c);
    previous_boundary = boundary;
  }
  return out;
}

String CleanName(StringView name) {
  String out;
  out.Reserve(name.size());
  for (const Char c : name) {
    if (c != u'/' && c != u' ') out.Append(c);
  }
  return out;
}

String SortKeyList(StringView list) {
  if (TrimBlanks(list).empty()) return String();
  std::vector<String> items;
  size_t start = 0;
  while (true) {
    const size_t comma = list.find(u',', start);
    items.emplace_back(
        list.substr(start, comma == StringView::npos ? StringView::npos : comma - start));
    if (comma == StringView::npos) break;
    start = comma + 1;
  }
  // The bubble sort of the original, passes running from the end: only the elements that it
  // swaps lose their blanks, and callers compare the result as text.
  const size_t n = items.size();
  for (size_t i = 0; i + 1 < n; ++i) {
    for (size_t j = n - 1; j > i; --j) {
      const StringView left = TrimBlanks(items[j - 1]);
      const StringView right = TrimBlanks(items[j]);
      if (CompareBinary(left, right) > 0) {
        String moved_up(right);
        String moved_down(left);
        items[j - 1] = std::move(moved_up);
        items[j] = std::move(moved_down);
      }
    }
  }
  String out;
  for (size_t i = 0; i < n; ++i) {
    if (i > 0) out.Append(u',');
    out.Append(items[i]);
  }
  return out;
}

int16_t PercentOf(double part, double whole) {
  if (whole == 0) whole = 1;
  if (part > whole) part = whole;
  const double percent = RoundHalfEven(part / whole * 100.0);
  if (!(percent >= -32768.0 && percent <= 32767.0)) throw Error(kErrOverflow);
  return static_cast<int16_t>(percent);
}

String ZeroPad(const Variant& value, int32_t width) {
  const String text = ToString(value);
  const int64_t missing = static_cast<int64_t>(width) - static_cast<int64_t>(text.size());
  if (missing < 0) throw Error(kErrInvalidCall);
  String out(static_cast<size_t>(missing), u'0');
  out.Append(text);
  return out;
}

String DateStamp(const Variant& value) {
  String text;
  try {
    text = ToString(value);
  } catch (const Error&) {
    // the value has no text form: it stays ""
  }
  try {
    const std::optional<DateParts> parts = SplitDate(ToDate(value));
    if (!parts) return text;
    return ZeroPad(Variant(int32_t{parts->year}), 4) + u"/" +
           ZeroPad(Variant(int32_t{parts->month}), 2) + u"/" +
           ZeroPad(Variant(int32_t{parts->day}), 2) + u" " +
           ZeroPad(Variant(int32_t{parts->hour}), 2) + u":" +
           ZeroPad(Variant(int32_t{parts->minute}), 2) + u":" +
           ZeroPad(Variant(int32_t{parts->second}), 2);
  } catch (const Error&) {
    return text;
  }
}

namespace {

cRegistry& SharedRegistry() {
  TyxVars& vars = Vars();
  if (!vars.Registry) vars.Registry = std::make_shared<cRegistry>();
  return *vars.Registry;
}

int32_t RootOf(StringView root) {
  return root == u"HKLM" ? kHkeyLocalMachine : kHkeyCurrentUser;
}

}  // namespace

Variant ReadRegValue(StringView root, StringView key, StringView name) {
  cRegistry& reg = SharedRegistry();
  reg.ClassKey = RootOf(root);
  reg.SectionKey = String(key);
  reg.ValueKey = String(name);
  Variant value = reg.Value();
  // A user's settings seeded by an older version lack the options added since: those read as
  // shipped. A stored value is never Empty, so Empty means missing. Only the settings fall
  // back; the user's extensions are the user's list, not the shipped one.
  if (value.is_empty() && reg.ClassKey == kHkeyCurrentUser &&
      EqualsNoCase(key, Vars().SettingsKey)) {
    reg.ClassKey = kHkeyLocalMachine;
    value = reg.Value();
  }
  Vars().RegValueType = reg.ValueType;
  return value;
}

void WriteRegValue(StringView root, StringView key, StringView name, int32_t type,
                   const Variant& value) {
  cRegistry& reg = SharedRegistry();
  reg.ClassKey = RootOf(root);
  reg.SectionKey = String(key);
  reg.ValueKey = String(name);
  reg.ValueType = type;
  reg.SetValue(value);
}

namespace {

std::filesystem::path XdgFolder(const char* variable, const char* fallback_below_home) {
  if (const char* value = std::getenv(variable); value && *value == '/') return value;
  return HomeFolder() / fallback_below_home;
}

String PathText(const std::filesystem::path& path) {
  std::string text = path.lexically_normal().string();
  while (text.size() > 1 && text.back() == '/')
    text.pop_back();
  return String::FromUtf8(text);
}

}  // namespace

String SpecialFolder(int32_t /*owner*/, int32_t folder_id) {
  switch (folder_id) {
    case kFolderPersonal:
    case kFolderMyDocuments: {
      const std::filesystem::path folder = XdgFolder("XDG_DOCUMENTS_DIR", "Documents");
      std::error_code ec;
      std::filesystem::create_directories(folder, ec);  // a failure shows at first real use
      return PathText(folder);
    }
    case kFolderAppData:
      return PathText(XdgFolder("XDG_CONFIG_HOME", ".config"));
    case kFolderProfile:
      return PathText(HomeFolder());
    default:
      return String();
  }
}

void LoadSystemCharset() {
  TyxVars& vars = Vars();
  vars.SystemCodePage = Variant(String(u"65001"));
  vars.SystemCharset = CharsetOfCodePage(vars.SystemCodePage);
}

namespace {

struct CharsetRow {
  const char16_t* charset;
  std::initializer_list<int32_t> code_pages;
};

const std::unordered_map<String, String>& CharsetTable() {
  static const auto* table = [] {
    static const CharsetRow kRows[] = {
        {u"iso-8859-1", {29001, 20106, 20277, 1142,  20278, 1143,  1147,  20273, 1141, 20871, 1149,
                         1148,  20280, 1144,  20284, 1145,  20285, 1146,  37,    1140, 861,   10079,
                         20108, 437,   20107, 20127, 850,   20105, 28591, 10000, 1252}},
        {u"iso-8859-2", {852, 28592, 10029, 1250, 870}},
        {u"iso-8859-3", {28593}},
        {u"iso-8859-4", {775, 28594, 1257}},
        {u"iso-8859-5", {866, 28595, 20866, 21866, 10007, 1251, 20880, 21025, 1026}},
        {u"iso-8859-6", {708, 720, 28596, 10004, 1256, 20420}},
        {u"iso-8859-7", {737, 28597, 10006, 1253, 869, 875, 20423}},
        {u"iso-8859-8", {862, 38598, 28598, 10005, 1255, 20424}},
        {u"iso-8859-9", {20905, 857, 28599, 10081, 1254}},
        {u"iso-8859-15", {28605}},
        {u"gb2312", {51936, 936, 52936, 10008, 50935}},
        {u"big5", {950, 20000, 20002, 10002, 50937}},
        {u"shift_jis", {50930, 20290, 50931, 51932, 50220, 50222, 50221, 10001, 932, 50939}},
        {u"euc-kr", {50933, 20833, 949, 51949, 50225, 1361, 10003}},
        {u"windows-874", {20838, 874}},
        {u"windows-1258", {1258}},
        {u"utf-16", {1200, 1201}},
        {u"utf-7", {65000}},
        {u"utf-8", {65001}},
        // The EBCDIC-style code pages below are listed so as to give "" on purpose.
        {u"", {57006, 57003, 57002, 57010, 57008, 57009, 57007, 57011, 57004, 57005}},
    };
    auto* map = new std::unordered_map<String, String>();
    for (const CharsetRow& row : kRows) {
      for (const int32_t code_page : row.code_pages)
        map->emplace(NumberText(code_page), row.charset);
    }
    return map;
  }();
  return *table;
}

}  // namespace

String CharsetOfCodePage(const Variant& code_page) {
  String text;
  try {
    text = ToString(code_page);
  } catch (const Error&) {
    return String();
  }
  String cleaned;
  for (const Char c : text) {
    if (c != 0) cleaned.Append(c);
  }
  const auto& table = CharsetTable();
  const auto it = table.find(String(TrimBlanks(cleaned)));
  return it == table.end() ? String() : it->second;
}

}  // namespace qv
