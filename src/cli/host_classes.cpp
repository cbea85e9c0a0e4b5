// The ProgID table of the library's creatable classes. "TyxClass.Tyx" goes through CreateTyx so
// that a script's root has its entry points wired and its defaults read, as a host's would.
#include "cli/host_classes.h"

#include "generation/cache.h"
#include "model/chart.h"
#include "model/charts.h"
#include "model/database.h"
#include "model/databases.h"
#include "model/extension.h"
#include "model/extensions.h"
#include "model/field.h"
#include "model/fields.h"
#include "model/properties.h"
#include "model/super_collection.h"
#include "model/table.h"
#include "model/tables.h"
#include "root/create_tyx.h"
#include "script/script_host.h"
#include "script/user_script.h"
#include "support/status.h"
#include "sync/sync_forms_object.h"
#include "templates/block_parser.h"
#include "templates/control.h"
#include "templates/controls.h"
#include "templates/filter.h"
#include "templates/keyword.h"
#include "templates/language.h"
#include "templates/session.h"
#include "templates/sessions.h"

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
    {u"TyxClass.TyxDatabases", Make<TyxDatabases>},
    {u"TyxClass.TyxDatabase", Make<TyxDatabase>},
    {u"TyxClass.TyxTables", Make<TyxTables>},
    {u"TyxClass.TyxTable", Make<TyxTable>},
    {u"TyxClass.TyxFields", Make<TyxFields>},
    {u"TyxClass.TyxField", Make<TyxField>},
    {u"TyxClass.TyxCharts", Make<TyxCharts>},
    {u"TyxClass.TyxChart", Make<TyxChart>},
    {u"TyxClass.TyxExtensions", Make<TyxExtensions>},
    {u"TyxClass.TyxExtension", Make<TyxExtension>},
    {u"TyxClass.TyxControl", Make<TyxControl>},
    {u"TyxClass.TyxSessions", Make<TyxSessions>},
    {u"TyxClass.TyxSession", Make<TyxSession>},
    {u"TyxClass.TyxCache", Make<TyxCache>},
    {u"TyxClass.TyScript", Make<TyScript>},
    {u"TyxClass.TyUserScript", Make<TyUserScript>},
    {u"TyxClass.TyxSyncForms", Make<TyxSyncForms>},
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
