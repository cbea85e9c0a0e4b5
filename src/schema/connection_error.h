// The words of a failed ADO read: the diagnostics of the connection turned into the one
// failure text, with the login failure told in plain words whatever else the provider said.
#pragma once

#include "automation/error.h"
#include "automation/string.h"
#include "platform/data/connection.h"
#include "platform/data/provider_error.h"
#include "support/tyx_vars.h"

namespace qv {

// The text for ProjErr after `failure` ended a reader. `numbered` adds the "Error #n:" line
// before each diagnostic (the schema readers); custom views leave it out.
String AdoConnectionErrorText(const data::Errors& errors, const Error& failure,
                              bool numbered = true);

// Runs a reader on `cn` under the connection error handler that both ADO readers share: the
// reader's result, or 3 with the handler's words in ProjErr when it raised. The connection is
// closed either way.
template <class Read>
int16_t UnderConnectionHandler(data::Connection& cn, Read&& read, bool numbered = true) {
  try {
    const int16_t result = read();
    cn.Close();
    return result;
  } catch (const Error& failure) {
    Vars().ProjErr = AdoConnectionErrorText(cn.GetErrors(), failure, numbered);
    cn.Close();
    return 3;
  }
}

}  // namespace qv
