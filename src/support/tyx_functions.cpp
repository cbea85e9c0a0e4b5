// Identifiers, type classes, DBMS kinds and quoting, exactly as generated code expects them.
#include "support/tyx_functions.h"

#include <algorithm>

#include "support/tyx_vars.h"

namespace qv {

namespace {

bool IsAsciiLetter(Char c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool IsAllowedInVarName(Char c) {
  return IsAsciiLetter(c) || (c >= u'0' && c <= u'9') || c == u' ' || c == u'_';
}

void AppendHex(String& out, Char c) {
  static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
  Char buffer[4];
  int n = 0;
  unsigned value = c;
  do {
    buffer[n++] = kDigits[value & 0xF];
    value >>= 4;
  } while (value != 0);
  while (n > 0)
    out.Append(buffer[--n]);
}

// Case-insensitive search, as InStr with vbTextCompare.
bool ContainsNoCase(StringView text, StringView part) {
  if (part.size() > text.size()) return false;
  for (size_t i = 0; i + part.size() <= text.size(); ++i) {
    if (EqualsNoCase(text.substr(i, part.size()), part)) return true;
  }
  return false;
}

bool IsQuote(Char c) {
  return c == u'"' || c == u'\'';
}

void AppendDoubledQuotes(String& out, StringView text) {
  for (const Char c : text) {
    out.Append(c);
    if (c == u'"') out.Append(c);
  }
}

}  // namespace

String ToVarName(StringView name, StringView prefix) {
  String body;
  body.Reserve(name.size() + 1);
  if (name.empty() || !IsAsciiLetter(name[0])) body.Append(u'x');
  for (const Char c : name) {
    if (c == u' ') {
      body.Append(u'_');
    } else if (IsAllowedInVarName(c)) {
      body.Append(c);
    } else {
      AppendHex(body, c);
    }
  }
  String out(prefix);
  out.Append(body.view());
  return out;
}

int16_t FieldTypeClass(int32_t ado_type) {
  switch (ado_type) {
    case 20:
    case 3:
    case 2:
    case 16:
    case 4:
    case 5:
    case 131:
    case 6:
      return kFieldClassNumber;
    case 7:
    case 133:
    case 134:
    case 135:
      return kFieldClassDate;
    case 201:
    case 203:
    case 129:
    case 130:
    case 200:
    case 202:
      return kFieldClassText;
    case 11:
      return kFieldClassBoolean;
    case 72:
      return kFieldClassGuid;
    default:
      return kFieldClassOther;
  }
}

int32_t DatabaseKind(StringView dbms) {
  if (dbms == u"MS Jet" || dbms == u"ACCESS") return kDbAccess;
  if (ContainsNoCase(dbms, u"Microsoft") && ContainsNoCase(dbms, u"SQL")) return kDbSqlServer;
  // MariaDB's own driver reports "MariaDB" for a server that speaks MySQL's SQL and quotes.
  if (ContainsNoCase(dbms, u"MySQL") || ContainsNoCase(dbms, u"MariaDB")) return kDbMySql;
  if (ContainsNoCase(dbms, u"ORA")) return kDbOracle;
  return kDbOther;
}

void SetQuoteChars(StringView dbms) {
  TyxVars& vars = Vars();
  const StringView style = vars.SqlQuoteStyle;
  String open;
  String close;
  if (style == u"Square Bracket") {
    open = u"[";
    close = u"]";
  } else if (style == u"Double Quote") {
    open = close = u"\"";
  } else if (style == u"Single Quote") {
    open = close = u"'";
  } else if (style == u"Backquote") {
    open = close = u"`";
  } else if (style == u"None") {
    // both empty
  } else {
    const int32_t kind = DatabaseKind(dbms);
    if (kind == kDbAccess || kind == kDbSqlServer) {
      open = u"[";
      close = u"]";
    } else if (kind == kDbMySql) {
      open = close = u"`";
    }
  }
  vars.TableQuoteOpen = open;
  vars.TableQuoteClose = close;
  vars.DbQuoteOpen = open;
  vars.DbQuoteClose = close;
}

String QuoteSqlName(StringView name) {
  const TyxVars& vars = Vars();
  return vars.TableQuoteOpen + name + vars.TableQuoteClose;
}

namespace {
// The text of a quote-pair Variant; the pair holds texts or nothing at all.
StringView PairText(const Variant& v) {
  return v.is_string() ? v.as_string().view() : StringView();
}
}  // namespace

String QuoteDbName(StringView name) {
  const TyxVars& vars = Vars();
  String out = PairText(vars.DbQuoteOpen);
  out.Append(name);
  out.Append(PairText(vars.DbQuoteClose));
  return out;
}

String QuoteScriptText(StringView value, int32_t level) {
  StringView text = TrimBlanks(value);
  while (text.size() > 1 && IsQuote(text.front()) && text.back() == text.front()) {
    text = TrimBlanks(text.substr(1, text.size() - 2));
  }
  if (level <= 0) return String(text);
  const String mark(static_cast<size_t>(level), u'"');
  String out = mark;
  AppendDoubledQuotes(out, text);
  out.Append(mark);
  return out;
}

String QuoteLiteral(StringView text, StringView indent) {
  String out;
  if (text.empty()) return out;
  size_t start = 0;
  while (true) {
    const size_t end = text.find(u"\r\n", start);
    const StringView line =
        text.substr(start, end == StringView::npos ? StringView::npos : end - start);
    if (!out.empty()) out.Append(u'&');
    out.Append(u'"');
    AppendDoubledQuotes(out, line);
    out.Append(u'"');
    if (end == StringView::npos) break;
    out.Append(u"&vbCrLf");
    if (!indent.empty()) {
      out.Append(u'&');
      out.Append(indent);
    }
    start = end + 2;
  }
  return out;
}

}  // namespace qv
