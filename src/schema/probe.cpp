// The probing statement.
#include "schema/probe.h"

#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// The name in the chosen quotes. A closing quote inside the name is doubled, as every DBMS
// reads it ("v""q", `a``b`, [x]]y]); without that a name such as v"q could never be probed.
String QuotedForProbe(StringView name) {
  const String& close = Vars().TableQuoteClose;
  if (close.size() != 1 || name.find(close[0]) == StringView::npos) return QuoteSqlName(name);
  String doubled;
  for (const Char c : name) {
    doubled.Append(c);
    if (c == close[0]) doubled.Append(c);
  }
  return QuoteSqlName(doubled);
}

}  // namespace

String ProbeStatement(StringView owner, StringView table) {
  String sql = u"SELECT * FROM ";
  if (!owner.empty()) sql += QuotedForProbe(owner) + u".";
  return sql + QuotedForProbe(table) + u" WHERE 0=1";
}

}  // namespace qv
