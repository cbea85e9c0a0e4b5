// CustomSqlParser on arbitrary text in every dialect (the first byte picks the DBMS kind): it
// must not crash, and an origin it gives must be text that stands in the statement (or the
// asked column itself, for columns that a "*" stands for).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "schema/custom_sql_parser.h"

namespace {

bool Within(const qv::String& part, const qv::String& whole, const qv::String& column) {
  return part.empty() || part == column ||
         whole.view().find(part.view()) != std::u16string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int kind = 1 + data[0] % 5;
  const qv::String sql =
      qv::String::FromUtf8(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1));
  qv::CustomSqlParser p;
  if (!p.Parse(sql, kind)) return 0;
  // Ask for a few names: pieces of the text itself and one that is surely not there.
  const qv::String columns[] = {qv::String(u"id"), qv::String(u"\u0001none"),
                                qv::String(sql.view().substr(0, sql.size() / 2)),
                                qv::String(sql.view().substr(sql.size() / 2))};
  for (const qv::String& column : columns) {
    qv::String name, table, field;
    bool alias = false;
    p.FieldOrigin(column, name, table, field, alias);
    if (alias && name.empty()) std::abort();
    if (!Within(name, sql, column)) std::abort();
    if (table.empty() && !field.empty() && name.empty()) std::abort();
  }
  return 0;
}
