// The probing statement.
#include "schema/probe.h"

#include "support/tyx_functions.h"

namespace qv {

String ProbeStatement(StringView owner, StringView table) {
  String sql = u"SELECT * FROM ";
  if (!owner.empty()) sql += QuoteSqlName(owner) + u".";
  return sql + QuoteSqlName(table) + u" WHERE 0=1";
}

}  // namespace qv
