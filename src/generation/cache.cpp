// The generation cache and its file.
#include "generation/cache.h"

#include <cassert>
#include <limits>
#include <string>

#include "automation/convert.h"
#include "automation/error.h"
#include "generation/run_state.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "platform/xml.h"
#include "support/common.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

String LowerText(const Variant& value) {
  return ToLower(ToString(value));
}

// The character set named in the file's declaration: the user's XMLEncodeCharSet when set,
// else the system's.
String DeclaredCharset() {
  TyxVars& vars = Vars();
  const Variant chosen = ReadRegValue(u"HKCU", vars.SettingsKey, u"XMLEncodeCharSet");
  String name;
  try {
    name = ToString(chosen);
  } catch (const Error&) {
    // a value with no text form counts as unset
  }
  if (!name.empty()) return name;
  if (vars.SystemCharset.empty()) LoadSystemCharset();
  return vars.SystemCharset;
}

}  // namespace

const DispatchTable<TyxCache>& TyxCache::Table() {
  static const auto table = DispatchTable<TyxCache>(u"TyxCache")
                                .Method(u"AddCache",
                                        [](TyxCache& c, Args a) {
                                          CheckArgCount(a, 4, 4);
                                          return Variant(c.AddCache(a[0], a[1], a[2], a[3]));
                                        })
                                .Method(u"DeleteCache",
                                        [](TyxCache& c, Args a) {
                                          CheckArgCount(a, 2, 2);
                                          return Variant(c.DeleteCache(a[0], a[1]));
                                        })
                                .Method(u"DeleteCacheGroup",
                                        [](TyxCache& c, Args a) {
                                          CheckArgCount(a, 1, 1);
                                          return Variant(c.DeleteCacheGroup(a[0]));
                                        })
                                .Method(u"DeleteAllCache",
                                        [](TyxCache& c, Args a) {
                                          CheckArgCount(a, 0, 0);
                                          return Variant(c.DeleteAllCache());
                                        })
                                .Method(u"CheckCache",
                                        [](TyxCache& c, Args a) {
                                          CheckArgCount(a, 4, 4);
                                          return Variant(c.CheckCache(a[0], a[1], a[2], a[3]));
                                        })
                                .Method(u"GetCacheDate",
                                        [](TyxCache& c, Args a) {
                                          CheckArgCount(a, 2, 2);
                                          return c.GetCacheDate(a[0], a[1]);
                                        })
                                .Method(u"WriteCacheFile", [](TyxCache& c, Args a) {
                                  CheckArgCount(a, 0, 0);
                                  c.WriteCacheFile();
                                  return Variant();
                                });
  return table;
}

String TyxCache::CacheFilePath() {
  const TyxVars& vars = Vars();
  String folder = fs::JoinPath(DocumentsFolder(), CleanName(vars.ProductName));
  folder = fs::JoinPath(fs::JoinPath(folder, u"Templates"), CleanName(vars.TemplateName));
  return fs::JoinPath(fs::JoinPath(folder, u"temp"), u"cache.xml");
}

String TyxCache::NormalizeDate(const Variant& date) {
  return DateStamp(date);
}

TyxCache::TyxCache() : file_(CacheFilePath()) {
  const String folder = fs::ParentFolderOf(file_);
  try {
    fs::CreateFolders(folder);
  } catch (Error& e) {
    // The platform's words alone don't say which folder below the documents folder it was.
    e.set_description(e.description() + u": " + folder);
    throw;
  }
  Load();
}

void TyxCache::Load() {
  if (!fs::FileExists(file_)) return;
  XmlDocument doc;
  if (!doc.Load(file_)) return;  // a damaged file is an empty cache: everything counts as new
  const XmlNode root = doc.documentElement();
  if (root.nodeName() != u"Cache") return;
  for (const XmlNode& child : root.childNodes()) {
    if (!child.IsElement() || child.nodeName() != u"CacheEntry") continue;
    if (entries_.size() >= static_cast<size_t>(std::numeric_limits<int16_t>::max())) break;
    const auto text = [&child](StringView name) {
      return child.getAttribute(name).value_or(String());
    };
    entries_.push_back(Entry{text(u"Group"), text(u"Key"), text(u"DateTime"), text(u"Size")});
  }
}

int32_t TyxCache::Find(const Variant& group, const Variant& key) const {
  const String g = LowerText(group);
  const String k = LowerText(key);
  for (size_t i = 0; i < entries_.size(); ++i) {
    if (ToLower(entries_[i].Group) == g && ToLower(entries_[i].Key) == k) {
      return static_cast<int32_t>(i);
    }
  }
  return -1;
}

bool TyxCache::AddCache(const Variant& group, const Variant& key, const Variant& date,
                        const Variant& size) {
  const String stamp = NormalizeDate(date);
  const String bytes = ToString(size);
  const int32_t found = Find(group, key);
  if (found >= 0) {
    entries_[found].DateTime = stamp;
    entries_[found].Size = bytes;
    return true;
  }
  // The count is a 16-bit number.
  if (entries_.size() >= static_cast<size_t>(std::numeric_limits<int16_t>::max())) {
    throw Error(kErrOverflow);
  }
  entries_.push_back(Entry{ToString(group), ToString(key), stamp, bytes});
  return true;
}

bool TyxCache::DeleteCache(const Variant& group, const Variant& key) {
  const int32_t found = Find(group, key);
  if (found < 0) return false;
  entries_.erase(entries_.begin() + found);
  return true;
}

bool TyxCache::DeleteCacheGroup(const Variant& group) {
  const String g = LowerText(group);
  const size_t before = entries_.size();
  std::erase_if(entries_, [&g](const Entry& e) { return ToLower(e.Group) == g; });
  return entries_.size() != before;
}

bool TyxCache::DeleteAllCache() {
  entries_.clear();
  return false;
}

int16_t TyxCache::CheckCache(const Variant& group, const Variant& key, const Variant& date,
                             const Variant& size) const {
  const int32_t found = Find(group, key);
  if (found < 0) return 2;
  const Entry& e = entries_[found];
  return (e.DateTime == NormalizeDate(date) && e.Size == ToString(size)) ? 0 : 1;
}

Variant TyxCache::GetCacheDate(const Variant& group, const Variant& key) const {
  const int32_t found = Find(group, key);
  if (found < 0) return Variant::Date(0.0);
  return Variant(entries_[found].DateTime);
}

void TyxCache::WriteCacheFile() const {
  const TyxVars& vars = Vars();
  const String charset = DeclaredCharset();
  std::u16string text = u"<?xml version=\"1.0\"";
  if (!charset.empty()) text += u" encoding=\"" + std::u16string(charset.view()) + u"\"";
  text += u" standalone=\"yes\"?>\r\n";
  const auto add = [&text](StringView piece) { text.append(piece); };
  add(u"<Cache Product=\"");
  add(vars.ProductName);
  add(u"\" Version=\"");
  add(vars.ProductVersion);
  add(u"\" >\r\n");
  for (const Entry& e : entries_) {
    // Values go out as they stand, unescaped: the file has always been written this way.
    add(u"<CacheEntry Group=\"");
    add(e.Group);
    add(u"\" Key=\"");
    add(e.Key);
    add(u"\" DateTime=\"");
    add(e.DateTime);
    add(u"\" Size=\"");
    add(e.Size);
    add(u"\" />\r\n");
  }
  add(u"</Cache>\r\n");
  WriteTextFile(file_, String(StringView(text)));
}

}  // namespace qv
