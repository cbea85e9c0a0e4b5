// The library's public classes that a host script makes with CreateObject("TyxClass.<Name>"),
// as a Windows host creates them by ProgID. One table row per class: later classes that are
// made with no arguments join by adding a row.
#pragma once

#include <span>

#include "vbscript/runtime.h"

namespace qv::cli {

struct HostClass {
  const char16_t* prog_id;
  vbs::ClassRegistry::Factory create;
};

// Every class of the table, in the order it lists them.
std::span<const HostClass> HostClasses();

// Adds every class of the table to an engine's registry.
void RegisterHostClasses(vbs::ClassRegistry& registry);

}  // namespace qv::cli
