// The registration list of an extension, in the order of the attributes of Extension in the
// project file. X(Name, Type, Registry, File, Sync); see bag_accessors.h.
#pragma once

#include "model/bag_accessors.h"

// clang-format off
#define QV_EXTENSION_PROPERTIES(X) \
  X(Seq, Integer, QV_REG_NONE, 1, 0) \
  X(Name, String, QV_REG_NONE, 1, 0) \
  X(Template, String, QV_REG_NONE, 1, 0)
// clang-format on
