// Reading odbc.ini through SQLGetPrivateProfileString, which honours ODBCINI and ODBCSYSINI
// and merges the user and system files as unixODBC's own tools do.
#include "platform/data/odbc_ini.h"

#include <odbcinst.h>

#include <string>

namespace qv::data {

String ReadOdbcIniValue(StringView dsn, StringView name) {
  if (dsn.empty() || name.empty()) return {};
  const std::string section = String::ToUtf8(dsn);
  const std::string key = String::ToUtf8(name);
  char buffer[4096] = {};
  const int length = SQLGetPrivateProfileString(section.c_str(), key.c_str(), "", buffer,
                                                sizeof buffer, "odbc.ini");
  if (length <= 0) return {};
  return String::FromUtf8(std::string_view(buffer, static_cast<size_t>(length)));
}

std::vector<String> OdbcDataSourceNames() {
  // With no section the call lists the section names, each ended by a NUL.
  char buffer[16384] = {};
  const int length =
      SQLGetPrivateProfileString(nullptr, nullptr, "", buffer, sizeof buffer, "odbc.ini");
  std::vector<String> names;
  const char* p = buffer;
  const char* end = buffer + (length > 0 ? length : 0);
  while (p < end && *p) {
    const std::string_view name(p);
    if (name != "ODBC") names.push_back(String::FromUtf8(name));
    p += name.size() + 1;
  }
  return names;
}

}  // namespace qv::data
