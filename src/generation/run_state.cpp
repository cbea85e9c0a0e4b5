// Typed access to the run's shared object slots.
#include "generation/run_state.h"

#include "automation/convert.h"
#include "generation/cache.h"
#include "support/common.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// The slot's object as T, or null when it holds nothing or something else.
template <class T>
T* SlotAs(const Ref<Object>& slot) {
  return dynamic_cast<T*>(slot.get());
}

}  // namespace

TyxControls& RunControlList() {
  Ref<Object>& slot = Vars().TheControls;
  if (!SlotAs<TyxControls>(slot)) slot = MakeRef<TyxControls>();
  return *SlotAs<TyxControls>(slot);
}

void SetRunControlList(Ref<TyxControls> controls) {
  Vars().TheControls = std::move(controls);
}

TyxLanguage& RunLanguage() {
  Ref<Object>& slot = Vars().TheLang;
  if (!SlotAs<TyxLanguage>(slot)) slot = MakeRef<TyxLanguage>();
  return *SlotAs<TyxLanguage>(slot);
}

void SetRunLanguage(Ref<TyxLanguage> lang) {
  Vars().TheLang = std::move(lang);
}

TyxCache* RunCache() {
  return SlotAs<TyxCache>(Vars().TheCache);
}

Ref<TyxDatabase> FirstDatabase(const Tyx& tyx) {
  TyxDatabases& list = tyx.Databases();
  if (TyxDatabase* db = list.Find(tyx.CurrentDbName)) return Ref<TyxDatabase>(db);
  if (list.Count() == 0) return nullptr;
  return Ref<TyxDatabase>(list.Find(list.collection().Key(1)));
}

String DocumentsFolder() {
  const StringView personal = TrimBlanks(Vars().PersonalFolder);
  if (!personal.empty()) return String(personal);
  return SpecialFolder(0, kFolderPersonal);
}

std::vector<Ref<TyxExtension>> ExtensionsInOrder(const Tyx& tyx) {
  const TyxExtensions& list = tyx.Extensions();
  std::vector<Ref<TyxExtension>> ordered;
  for (int32_t seq = 1; seq <= list.Count(); ++seq) {
    if (Ref<TyxExtension> extension = list.Seq(static_cast<int16_t>(seq))) {
      ordered.push_back(std::move(extension));
    }
  }
  return ordered;
}

}  // namespace qv
