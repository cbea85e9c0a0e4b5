// The named constants of ADO (adOpenStatic, adVarChar, adCmdText, ...), for pages that name them
// through a type-library directive or carry them as an include of Const lines.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "automation/string.h"

namespace qv::ado {

struct AdoConstant {
  const char16_t* name;
  int32_t value;
};

// Every constant, grouped by the enumeration it belongs to.
std::span<const AdoConstant> AdoConstants();

// The value of a constant by name, without regard to case.
std::optional<int32_t> FindAdoConstant(StringView name);

// The constants as VBScript "Const name = value" lines (CR LF ends), the text of the include a
// page can carry instead of the type-library directive.
String AdoConstantsInclude();

}  // namespace qv::ado
