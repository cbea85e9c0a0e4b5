// TyxExtensions: the project's extensions, with a current entry. Adding a name that is already
// there counts as success and only makes it current.
#pragma once

#include "model/extension.h"
#include "model/named_list.h"

namespace qv {

class TyxExtensions final : public TyxList<TyxExtensions, TyxExtension, kExtensionListRules> {};

}  // namespace qv
