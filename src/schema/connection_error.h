// The words of a failed ADO read: the diagnostics of the connection turned into the one
// failure text, with the login failure told in plain words whatever else the provider said.
#pragma once

#include "automation/error.h"
#include "automation/string.h"
#include "platform/data/provider_error.h"

namespace qv {

// The text for ProjErr after `failure` ended a reader. `numbered` adds the "Error #n:" line
// before each diagnostic (the schema readers); custom views leave it out.
String AdoConnectionErrorText(const data::Errors& errors, const Error& failure,
                              bool numbered = true);

}  // namespace qv
