// Parsing and printing connection strings, and the short URL forms of the command line.
#include "platform/data/connection_string.h"

namespace qv::data {
namespace {

StringView Trim(StringView text) {
  while (!text.empty() && (text.front() == u' ' || text.front() == u'\t'))
    text.remove_prefix(1);
  while (!text.empty() && (text.back() == u' ' || text.back() == u'\t'))
    text.remove_suffix(1);
  return text;
}

bool StartsWithNoCase(StringView text, StringView prefix) {
  return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

// Reads one value starting at `pos`: {braced} (ODBC), 'quoted' or "quoted" (OLE DB, a doubled
// quote stands for one), or plain up to the next ';'.
String ReadValue(StringView text, size_t& pos) {
  while (pos < text.size() && text[pos] == u' ')
    ++pos;
  if (pos >= text.size()) return {};
  const Char open = text[pos];
  if (open == u'{') {
    const size_t close = text.find(u'}', pos + 1);
    const size_t stop = close == StringView::npos ? text.size() : close;
    String value(text.substr(pos + 1, stop - pos - 1));
    pos = stop == text.size() ? stop : stop + 1;
    return value;
  }
  if (open == u'\'' || open == u'"') {
    String value;
    size_t i = pos + 1;
    for (; i < text.size(); ++i) {
      if (text[i] != open) {
        value.Append(text[i]);
        continue;
      }
      if (i + 1 < text.size() && text[i + 1] == open) {
        value.Append(open);
        ++i;
        continue;
      }
      break;
    }
    pos = i < text.size() ? i + 1 : i;
    return value;
  }
  const size_t stop = std::min(text.find(u';', pos), text.size());
  String value(Trim(text.substr(pos, stop - pos)));
  pos = stop;
  return value;
}

}  // namespace

ConnectionString ConnectionString::Parse(StringView text) {
  ConnectionString result;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t equals = text.find(u'=', pos);
    const size_t semicolon = text.find(u';', pos);
    if (equals == StringView::npos || (semicolon != StringView::npos && semicolon < equals)) {
      // A piece without "=" carries nothing; skip it.
      if (semicolon == StringView::npos) break;
      pos = semicolon + 1;
      continue;
    }
    const StringView key = Trim(text.substr(pos, equals - pos));
    pos = equals + 1;
    String value = ReadValue(text, pos);
    while (pos < text.size() && text[pos] != u';')
      ++pos;
    if (pos < text.size()) ++pos;
    if (!key.empty()) result.pairs_.emplace_back(String(key), std::move(value));
  }
  return result;
}

std::optional<String> ConnectionString::Get(StringView key) const {
  for (auto it = pairs_.rbegin(); it != pairs_.rend(); ++it) {
    if (EqualsNoCase(it->first, key)) return it->second;
  }
  return std::nullopt;
}

std::optional<String> ConnectionString::GetAny(std::initializer_list<StringView> keys) const {
  for (const StringView key : keys) {
    if (auto value = Get(key)) return value;
  }
  return std::nullopt;
}

void ConnectionString::Set(StringView key, StringView value) {
  Remove(key);
  pairs_.emplace_back(String(key), String(value));
}

void ConnectionString::Remove(StringView key) {
  std::erase_if(pairs_, [&](const auto& pair) { return EqualsNoCase(pair.first, key); });
}

String ConnectionString::Provider() const {
  return Get(u"Provider").value_or(String());
}

ProviderKind ConnectionString::Kind() const {
  const String provider = Provider();
  if (provider.empty() || StartsWithNoCase(provider, u"MSDASQL")) return ProviderKind::Odbc;
  if (EqualsNoCase(provider, u"SQLite")) return ProviderKind::Sqlite;
  if (StartsWithNoCase(provider, u"Microsoft.Jet.OLEDB") ||
      StartsWithNoCase(provider, u"Microsoft.ACE.OLEDB")) {
    return ProviderKind::Jet;
  }
  if (EqualsNoCase(provider, u"SQLOLEDB") || StartsWithNoCase(provider, u"SQLOLEDB.") ||
      StartsWithNoCase(provider, u"SQLNCLI") || StartsWithNoCase(provider, u"MSOLEDBSQL")) {
    return ProviderKind::SqlServer;
  }
  if (StartsWithNoCase(provider, u"OraOLEDB") || StartsWithNoCase(provider, u"MSDAORA")) {
    return ProviderKind::Oracle;
  }
  if (EqualsNoCase(provider, u"Scripted")) return ProviderKind::Scripted;
  return ProviderKind::Unknown;
}

String ConnectionString::ToText() const {
  String text;
  for (const auto& [key, value] : pairs_) {
    if (!text.empty()) text.Append(u';');
    text.Append(key);
    text.Append(u'=');
    const StringView v = value;
    const bool brace = v.find_first_of(u";{}") != StringView::npos ||
                       (!v.empty() && (v.front() == u' ' || v.back() == u' '));
    if (brace) text.Append(u'{');
    text.Append(v);
    if (brace) text.Append(u'}');
  }
  return text;
}

String ExpandShortUrl(StringView text) {
  if (StartsWithNoCase(text, u"sqlite:")) {
    return u"Provider=SQLite;Data Source=" + String(text.substr(7));
  }
  if (StartsWithNoCase(text, u"odbc:")) return u"DSN=" + String(text.substr(5));
  if (StartsWithNoCase(text, u"access:")) {
    return u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + String(text.substr(7)) + u";";
  }
  return String(text);
}

}  // namespace qv::data
