// Builds the failure text of the ADO readers from the connection's diagnostics.
#include "schema/connection_error.h"

#include <string>

#include "platform/data/data_types.h"
#include "support/tyx_vars.h"

namespace qv {

String AdoConnectionErrorText(const data::Errors& errors, const Error& failure, bool numbered) {
  const String& title = Vars().ProductTitle;
  String text;
  int32_t position = 0;
  for (const data::ErrorRecord& record : errors) {
    if (record.number == data::kErrLoginFailed) {
      return title + u": Unable to connect to Data Source! User ID / Password not valid!";
    }
    ++position;
    if (numbered) text += u"\r\nError #" + NumberText(position) + u":";
    text += u"\r\n   ADO Error   #" + NumberText(record.number);
    text += u"\r\n   Description  " + record.description;
    text += u"\r\n   Source       " + record.source;
  }
  if (!text.empty()) return title + u": " + text;
  return title + u": ADO Connection Error " + failure.description();
}

}  // namespace qv
