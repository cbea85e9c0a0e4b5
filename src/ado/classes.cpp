// The creatable ADODB classes.
#include "ado/classes.h"

#include "ado/command.h"
#include "ado/connection.h"
#include "ado/recordset.h"
#include "ado/stream.h"

namespace qv::ado {
namespace {

template <class T>
Ref<Object> Make() {
  return Ref<Object>(MakeRef<T>());
}

struct AdoClass {
  const char16_t* name;
  Ref<Object> (*create)();
};

constexpr AdoClass kClasses[] = {
    {u"Connection", Make<ConnectionObject>}, {u"Recordset", Make<RecordsetObject>},
    {u"Command", Make<CommandObject>},       {u"Parameter", Make<ParameterObject>},
    {u"Stream", Make<StreamObject>},
};

}  // namespace

void RegisterAdoClasses(vbs::ClassRegistry& registry) {
  for (const AdoClass& c : kClasses) {
    const String prog_id = u"ADODB." + String(c.name);
    registry.Register(prog_id, c.create);
    registry.Register(prog_id + u".2.8", c.create);
    registry.Register(prog_id + u".6.0", c.create);
  }
}

}  // namespace qv::ado
