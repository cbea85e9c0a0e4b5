// ViewSqlParser on arbitrary text: it must not crash, and a text it doesn't analyse must give
// no table, no join and no updatable answer. The join cursor must walk to its end.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "schema/view_sql_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const qv::String sql =
      qv::String::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  qv::ViewSqlParser p;
  p.SetSql(sql);
  if (!p.Analysed() && (p.Updatable() || p.JoinCount() != 0 || !p.TableName().empty())) {
    std::abort();
  }
  if (p.JoinCount() > 0 && !p.TableName().empty()) std::abort();
  int16_t walked = 0;
  for (p.FirstJoin(); !p.JoinEOF(); p.NextJoin()) {
    const qv::String& type = p.JoinType();
    if (type != u"INNER" && type != u"LEFT" && type != u"RIGHT" && type != u"FULL" &&
        type != u"CROSS")
      std::abort();
    ++walked;
  }
  if (walked != p.JoinCount()) std::abort();
  return 0;
}
