// The ProgIDs of the ADODB objects, for every host that lets scripts CreateObject them
// (quorvex-vbs, quorvex script, the ASP runtime).
#pragma once

#include "vbscript/runtime.h"

namespace qv::ado {

// Registers ADODB.Connection, .Recordset, .Command, .Parameter and .Stream (also under their
// ".2.8" and ".6.0" names).
void RegisterAdoClasses(vbs::ClassRegistry& registry);

}  // namespace qv::ado
