// A table's registration, its defaults and its object interface.
#include "model/table.h"

#include "support/common.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

TyxTable::TyxTable() : properties_(MakeRef<TyProperties>()), fields_(MakeRef<TyxFields>()) {
  properties_->Register(Layout());
}

const PropertyLayout& TyxTable::Layout() {
  static const PropertyLayout* layout = new PropertyLayout({QV_TABLE_PROPERTIES(QV_BAG_SPEC)});
  return *layout;
}

void TyxTable::LoadTableDefault() {
  const TyxVars& v = Vars();
  const String name = TblName();
  SetTblCaption(ToCaption(name));
  SetTblVar(ToVarName(name, u""));
  SetTblOverwrite(true);
  SetTblInlineEdit(false);
  SetTblSortType(1);
  SetTblSortType(v.SortType);
  SetTblUseGlobal(true);
  SetTblRecPerPage(v.RecPerPage);
  SetTblRecPerPageList(v.RecPerPageList);
  SetTblExportHtml(v.ExportHtml);
  SetTblExportWord(v.ExportWord);
  SetTblExportExcel(v.ExportExcel);
  SetTblExportXml(v.ExportXml);
  SetTblExportCsv(v.ExportCsv);
  SetTblRecPerRow(v.RecPerRow);
  SetTblMultiDelete(v.MultiDelete);
  SetTblPagerStyle(v.PagerStyle);
  SetTblTopPageLink(v.TopPageLink);
  SetTblLinkOnLeft(v.LinkOnLeft);
  SetTblInlineDelete(v.InlineDelete);
  SetTblRptIndent(v.RptIndent);
  SetTblDefault(false);
  SetTblList(true);

  const String type = TblType();
  const bool table = type == u"TABLE";
  SetTblAdd(table);
  SetTblView(table);
  SetTblEdit(table);
  SetTblDelete(table);
  SetTblCopy(table);
  if (table) SetTblSQL(u"");
  const bool report = type == u"REPORT";
  SetTblUpdatable(!report);
  SetTblSrchType(report ? u"NONE" : u"BASIC");
  SetTblSecurity(v.SecDefault);
}

const DispatchTable<TyxTable>& TyxTable::Table() {
  using T = TyxTable;
  static const auto table = DispatchTable<T>(u"TyxTable")
                                .Property<&T::Properties>(u"Properties")
                                .Property<&T::Fields>(u"Fields")
                                .Property<&T::Key, &T::SetKey>(u"Key")
                                .Method<&T::LoadTableDefault>(u"LoadTableDefault")
                                .Parameterless({u"Properties", u"Fields"});
  return table;
}

}  // namespace qv
