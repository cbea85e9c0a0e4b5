// Attribute names map to properties through one table, which both loading and the script
// surface use.
#include "templates/session.h"

#include <array>

#include "automation/convert.h"

namespace qv {
namespace {

struct Field {
  StringView attribute;
  StringView property;
  String TyxSession::*member;
};

constexpr std::array<Field, 9> kFields = {{
    {u"type", u"SessType", &TyxSession::SessType},
    {u"value", u"SessValue", &TyxSession::SessValue},
    {u"parm", u"SessParm", &TyxSession::SessParm},
    {u"ifile", u"SessIFile", &TyxSession::SessIFile},
    {u"cond", u"SessCond", &TyxSession::SessCond},
    {u"extension", u"SessExt", &TyxSession::SessExt},
    {u"action", u"SessAction", &TyxSession::SessAction},
    {u"location", u"SessLocation", &TyxSession::SessLocation},
    {u"loctype", u"SessLocType", &TyxSession::SessLocType},
}};

template <size_t... I>
void AddProperties(DispatchTable<TyxSession>& table, std::index_sequence<I...>) {
  (table.Field<kFields[I].member>(kFields[I].property), ...);
}

}  // namespace

const DispatchTable<TyxSession>& TyxSession::Table() {
  static const auto table = [] {
    DispatchTable<TyxSession> t(u"TyxSession");
    AddProperties(t, std::make_index_sequence<kFields.size()>());
    return t;
  }();
  return table;
}

void TyxSession::Load(const XmlNode& xml_session) {
  for (const XmlAttribute& attribute : xml_session.attributes()) {
    const String name = ToLower(attribute.nodeName);
    for (const Field& field : kFields) {
      if (name == field.attribute) this->*field.member = attribute.nodeValue;
    }
  }
}

}  // namespace qv
