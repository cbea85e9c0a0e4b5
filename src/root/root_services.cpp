// Entry points of the root, wired to their subsystems.
#include "root/root_services.h"

#include "automation/convert.h"
#include "generation/driver.h"
#include "persistence/project_file.h"
#include "persistence/saved_defaults.h"
#include "schema/custom_view.h"
#include "schema/project_loader.h"
#include "schema/report.h"
#include "script/expression.h"
#include "sync/custom_sync.h"
#include "sync/difference_check.h"
#include "sync/load_check.h"
#include "sync/table_sync.h"

namespace qv {

namespace {

// The bag of a definition object, or the bag itself; anything else is a type mismatch.
TyProperties& BagOf(const Variant& v) {
  Object* object = v.is_object() ? v.as_object() : nullptr;
  if (auto* bag = dynamic_cast<TyProperties*>(object)) return *bag;
  if (auto* field = dynamic_cast<TyxField*>(object)) return field->Properties();
  if (auto* table = dynamic_cast<TyxTable*>(object)) return table->Properties();
  if (auto* db = dynamic_cast<TyxDatabase*>(object)) return db->Properties();
  if (auto* extension = dynamic_cast<TyxExtension*>(object)) return extension->Properties();
  if (auto* root = dynamic_cast<Tyx*>(object)) return root->Properties();
  throw Error(object ? kErrTypeMismatch : kErrObjectRequired);
}

}  // namespace

void RootServices::Load(Tyx& tyx, const String& project_file) {
  LoadProjectFile(tyx, project_file, CheckOnLoad);
}

void RootServices::Save(Tyx& tyx, const String& project_file) {
  SaveProjectFile(tyx, project_file);
}

void RootServices::LoadDefault(Tyx& tyx) {
  qv::LoadDefault(tyx);
}

void RootServices::SaveDefault(Tyx& tyx) {
  qv::SaveDefault(tyx);
}

void RootServices::LoadDB(Tyx& tyx, Args args) {
  qv::LoadDB(tyx, args);
}

void RootServices::LoadTable(Tyx& tyx, const Variant& table_name) {
  qv::LoadTable(tyx, ToString(table_name));
}

void RootServices::UnLoadTable(Tyx& tyx, const Variant& table_name) {
  qv::UnLoadTable(tyx, ToString(table_name));
}

void RootServices::UnLoadDB(Tyx& tyx) {
  qv::UnLoadDB(tyx);
}

Variant RootServices::CustomViewConnStr(Tyx& tyx) {
  return qv::CustomViewConnStr(tyx);
}

void RootServices::LoadCustomView(Tyx& tyx, const Variant& table_name, const Variant& sql,
                                  const Variant& copy_fields) {
  // bCopyFields is optional: left out, the view keeps the defaults of its fields.
  const bool copy = !copy_fields.is_missing() && !copy_fields.is_empty() && ToBool(copy_fields);
  qv::LoadCustomView(tyx, ToString(table_name), ToString(sql), copy);
}

bool RootServices::LoadReport(Tyx& tyx, const Variant& table_name, const Variant& from_table) {
  return qv::LoadReport(tyx, ToString(table_name), ToString(from_table));
}

String RootServices::Parse(Tyx& tyx, const Variant& text) {
  return qv::Parse(tyx, ToString(text));
}

String RootServices::FldSrchOprs(Tyx&, int16_t ado_type) {
  return qv::FldSrchOprs(ado_type);
}

int16_t RootServices::GenCheck(Tyx& tyx) {
  return qv::GenCheck(tyx);
}

void RootServices::GenScript(Tyx& tyx) {
  qv::GenScript(tyx);
}

int16_t RootServices::CheckDB(Tyx& tyx) {
  return qv::CheckDB(tyx);
}

void RootServices::SynchronizeDB(Tyx& tyx) {
  qv::SynchronizeDB(tyx);
}

void RootServices::SyncCustom(Tyx& tyx, const Variant& table_name) {
  qv::SyncCustom(tyx, ToString(table_name));
}

void RootServices::SyncReport(Tyx& tyx, const Variant& table_name) {
  qv::SyncReport(tyx, ToString(table_name));
}

void RootServices::SyncProperties(Tyx&, const Variant& source, const Variant& target) {
  qv::SyncProperties(BagOf(source), BagOf(target));
}

}  // namespace qv
