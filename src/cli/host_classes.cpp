// The ProgID table of the library's creatable classes. "TyxClass.Tyx" goes through CreateTyx so
// that a script's root has its entry points wired and its defaults read, as a host's would.
#include "cli/host_classes.h"

#include "model/properties.h"
#include "model/super_collection.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "templates/block_parser.h"
#include "templates/controls.h"
#include "templates/filter.h"
#include "templates/keyword.h"
#include "templates/language.h"

namespace qv::cli {
namespace {

template <class T>
Ref<Object> Make() {
  return Ref<Object>(MakeRef<T>());
}

const HostClass kHostClasses[] = {
    {u"TyxClass.Tyx", [] { return Ref<Object>(CreateTyx()); }},
    {u"TyxClass.TyParser", Make<TyParser>},
    {u"TyxClass.TyxControls", Make<TyxControls>},
    {u"TyxClass.TyxLanguage", Make<TyxLanguage>},
    {u"TyxClass.TyxKeyword", Make<TyxKeyword>},
    {u"TyxClass.TyxFilter", Make<TyxFilter>},
    {u"TyxClass.TyxStatus", Make<TyxStatus>},
    {u"TyxClass.TyProperties", Make<TyProperties>},
    {u"TyxClass.CSuperCollection", Make<CSuperCollection>},
};

}  // namespace

std::span<const HostClass> HostClasses() {
  return kHostClasses;
}

void RegisterHostClasses(vbs::ClassRegistry& registry) {
  for (const HostClass& c : kHostClasses)
    registry.Register(c.prog_id, c.create);
}

}  // namespace qv::cli
