// What Server.CreateObject and CreateObject can make in a page beyond the engine's standard
// classes, and the constants the ADO type library gives a page that names it.
#pragma once

#include <string_view>

#include "platform/data/connection_pool.h"
#include "vbscript/runtime.h"

namespace qv::asp {

// ADODB.Connection objects open and close through `pool`, which outlives the registry's
// objects.
void RegisterServerClasses(vbs::ClassRegistry& registry, data::ConnectionPool& pool);
// Quorvex.Journal (journal_object.cpp).
void RegisterJournalClass(vbs::ClassRegistry& registry);
// An object whose members are the ADO constants; added with its members as global names, it
// makes them known to a page without compiling a Const statement per request.
Ref<Object> AdoConstantsObject();

}  // namespace qv::asp
