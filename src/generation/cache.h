// TyxCache: the date and size of every source file and translated script of a template's last
// run, kept in the template's temp folder as cache.xml. A source that agrees with its entry is
// not unpacked again, and a script newer than its sources is not translated again.
//
// Keys are the pair (group, key), compared in lower case. The file is written as the engine
// always wrote it: fixed layout, values without XML escaping (so a key with "&" spoils the file,
// and the next load silently starts with an empty cache, which only costs a full rebuild).
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"

namespace qv {

class TyxCache : public DispatchObject<TyxCache> {
 public:
  static const DispatchTable<TyxCache>& Table();

  // The cache of the template in Vars().TemplateName: creates the folders on the way to its
  // file and loads the file if there is one.
  TyxCache();

  // Adds or replaces the entry; the date is stored normalised. Always true.
  bool AddCache(const Variant& group, const Variant& key, const Variant& date, const Variant& size);
  // True when an entry was removed.
  bool DeleteCache(const Variant& group, const Variant& key);
  // True when at least one entry of the group was removed.
  bool DeleteCacheGroup(const Variant& group);
  // Empties the list; answers false, as it always has.
  bool DeleteAllCache();
  // 0 the entry agrees in date and size, 1 it differs, 2 there is no entry.
  int16_t CheckCache(const Variant& group, const Variant& key, const Variant& date,
                     const Variant& size) const;
  // The entry's date text, or the empty date (a Date of 0, "0:0:0") when there is none.
  Variant GetCacheDate(const Variant& group, const Variant& key) const;
  // Writes the file anew. File system failures raise.
  void WriteCacheFile() const;

  int16_t Count() const { return static_cast<int16_t>(entries_.size()); }
  const String& FilePath() const { return file_; }

  // The path of cache.xml for the current TemplateName.
  static String CacheFilePath();
  // "yyyy/mm/dd hh:mm:ss" of a date, or the value's text when it reads as no date.
  static String NormalizeDate(const Variant& date);

 private:
  struct Entry {
    String Group;
    String Key;
    String DateTime;
    String Size;
  };
  // Index of the entry, or -1.
  int32_t Find(const Variant& group, const Variant& key) const;
  void Load();

  String file_;
  std::vector<Entry> entries_;
};

}  // namespace qv
