// The built-in locale 1033, the cache of the others, and the locale current on each thread.
#include "automation/locale.h"

#include <map>
#include <memory>
#include <mutex>

#include "automation/locale_data.h"

namespace qv {

namespace {

// Which locale this thread converts under. Conversions are reached from deep inside value
// operations and from host objects that know nothing of engines, so the running engine makes
// its locale current here for the length of each call into it instead of passing it down
// every path; it is per thread, so engines on different threads never see each other's.
constinit thread_local const Locale* t_current = nullptr;
// How many scopes are open on this thread: outside every scope the thread stays at 1033.
constinit thread_local int t_scopes = 0;

// 1033 is written out rather than read from ICU: it is every conversion's default, including
// those of processes that never run a script, and its texts must not move with ICU's version
// (ICU's English time pattern, for one, puts a narrow no-break space before "AM").
Locale MakeEnglishUnitedStates() {
  Locale l;
  l.months = {u"January", u"February", u"March",     u"April",   u"May",      u"June",
              u"July",    u"August",   u"September", u"October", u"November", u"December"};
  for (size_t i = 0; i < 12; ++i)
    l.month_abbreviations[i] = l.months[i].substr(0, 3);
  l.months_in_dates = l.months;
  l.days = {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};
  for (size_t i = 0; i < 7; ++i)
    l.day_abbreviations[i] = l.days[i].substr(0, 3);
  return l;
}

// Locales built so far, by id; never removed, so the pointers handed out stay valid.
struct LocaleCache {
  std::mutex mutex;
  std::map<int32_t, std::unique_ptr<const Locale>> built;
  std::map<int32_t, bool> unknown;
};

LocaleCache& Cache() {
  static LocaleCache cache;
  return cache;
}

}  // namespace

const Locale& DefaultLocale() {
  static const Locale english = MakeEnglishUnitedStates();
  return english;
}

const Locale* FindLocale(int32_t id) {
  if (id == 1033) return &DefaultLocale();
  LocaleCache& cache = Cache();
  const std::lock_guard<std::mutex> lock(cache.mutex);
  if (const auto it = cache.built.find(id); it != cache.built.end()) return it->second.get();
  if (cache.unknown.count(id)) return nullptr;
  std::unique_ptr<const Locale> made = BuildLocale(id);
  if (!made) {
    cache.unknown[id] = true;
    return nullptr;
  }
  return (cache.built[id] = std::move(made)).get();
}

const Locale& CurrentLocale() {
  return t_current ? *t_current : DefaultLocale();
}

LocaleScope::LocaleScope(const Locale* locale) : previous_(t_current) {
  t_current = locale;
  ++t_scopes;
}

LocaleScope::~LocaleScope() {
  t_current = previous_;
  --t_scopes;
}

void SetCurrentLocale(const Locale* locale) {
  if (t_scopes > 0) t_current = locale;
}

}  // namespace qv
