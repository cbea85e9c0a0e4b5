// cRegistry over the two settings files: the cursor's reads, its typed writes and the 26001
// failures with their fixed texts.
#include "support/registry.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "automation/convert.h"
#include "automation/error.h"
#include "automation/safe_array.h"
#include "support/data_folder.h"
#include "support/settings_file.h"
#include "support/settings_format.h"

namespace qv {

namespace fs = std::filesystem;

fs::path UserSettingsPath() {
  if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config == '/') {
    return fs::path(config) / "quorvex" / "settings";
  }
  return HomeFolder() / ".config" / "quorvex" / "settings";
}

fs::path MachineSettingsPath() {
  return DataFolder() / "machine-settings";
}

namespace {

// The open settings files, one per path: the parsed trees stay in memory between calls, so
// the ~80 reads of a LoadDefault cost one stat() each.
SettingsFile& TreeFile(int32_t class_key) {
  static std::map<fs::path, std::unique_ptr<SettingsFile>> files;
  const bool machine = class_key == kHkeyLocalMachine;
  const fs::path path = machine ? MachineSettingsPath() : UserSettingsPath();
  auto& slot = files[path];
  if (!slot) {
    std::string header =
        machine ? "; Quorvex machine settings: the defaults that seed each user's settings.\n"
                : "; Quorvex user settings, written by the program.\n";
    header += SettingsFormatHelp();
    slot = std::make_unique<SettingsFile>(path, machine, std::move(header));
  }
  return *slot;
}

[[noreturn]] void Raise(String description) {
  throw Error(kRegistryErrorNumber, std::move(description), String(kRegistryErrorSource));
}

String KeyText(const cRegistry& reg) {
  return u"Key: '" + NumberText(reg.ClassKey) + u"',Section: '" + reg.SectionKey + u"'";
}

// The value as the failure text shows it; a value without a text form shows as nothing.
String ValueText(const Variant& value) {
  try {
    return ToString(value);
  } catch (const Error&) {
    return String();
  }
}

[[noreturn]] void RaiseSetFailed(const cRegistry& reg, const Variant& value) {
  Raise(u"Failed to set registry value " + KeyText(reg) + u",Key: '" + reg.ValueKey +
        u"' to value: '" + ValueText(value) + u"'");
}

uint32_t ReverseBytes(uint32_t v) {
  return (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
}

// The value of an environment variable. QUORVEX_DATA_DIR always has one, the data folder, so
// that the shipped machine tree can name files inside it wherever the program is installed.
std::optional<std::string> VariableValue(const std::string& name) {
  if (name.empty()) return std::nullopt;
  if (const char* value = std::getenv(name.c_str())) return std::string(value);
  if (name == "QUORVEX_DATA_DIR") return DataFolder().string();
  return std::nullopt;
}

// %NAME% replaced by the variable's value; unknown names stay as they are.
String ExpandVariables(StringView text) {
  String out;
  size_t i = 0;
  while (i < text.size()) {
    const size_t open = text.find(u'%', i);
    if (open == StringView::npos) break;
    const size_t close = text.find(u'%', open + 1);
    if (close == StringView::npos) break;
    out.Append(text.substr(i, open - i));
    const std::string name = String::ToUtf8(text.substr(open + 1, close - open - 1));
    const std::optional<std::string> value = VariableValue(name);
    if (value) {
      out.Append(String::FromUtf8(*value).view());
      i = close + 1;
    } else {
      out.Append(u'%');
      i = open + 1;
    }
  }
  out.Append(text.substr(i));
  return out;
}

Variant ByteArray(const std::vector<uint8_t>& bytes) {
  std::vector<Variant> values;
  values.reserve(bytes.size());
  for (const uint8_t b : bytes)
    values.emplace_back(b);
  return Variant(SafeArray::FromValues(std::move(values), VarType::Byte));
}

bool IsByteArray(const Variant& v) {
  return v.is_array() && v.as_array()->element_type() == VarType::Byte &&
         v.as_array()->dimensions() == 1;
}

size_t CountPercent(StringView text) {
  size_t n = 0;
  for (const Char c : text)
    n += c == u'%';
  return n;
}

// Keys whose names a settings file can hold: no control characters, no half of a surrogate
// pair (the key line is plain UTF-8, without escapes).
bool IsStorableKeyPath(StringView path) {
  for (size_t i = 0; i < path.size(); ++i) {
    const Char c = path[i];
    if (c < 0x20) return false;
    if (c >= 0xDC00 && c <= 0xDFFF) return false;  // a low half without its high half
    if (c >= 0xD800 && c <= 0xDBFF) {
      if (i + 1 >= path.size() || path[i + 1] < 0xDC00 || path[i + 1] > 0xDFFF) return false;
      ++i;
    }
  }
  return true;
}

}  // namespace

bool cRegistry::KeyExists() const {
  return TreeFile(ClassKey).Tree().Find(SectionKey) != nullptr;
}

Variant cRegistry::Value() {
  const SettingsNode* key = TreeFile(ClassKey).Tree().Find(SectionKey);
  const RegistryValue* value = key ? key->FindValue(ValueKey) : nullptr;
  if (!value) return Default;
  ValueType = value->type;
  switch (value->type) {
    case kRegSz:
    case kRegMultiSz:
      return Variant(value->text);
    case kRegExpandSz:
      return Variant(ExpandVariables(value->text));
    case kRegDword:
      return Variant(static_cast<int32_t>(value->number));
    case kRegDwordBigEndian:
      return Variant(static_cast<int32_t>(ReverseBytes(value->number)));
    default:
      return ByteArray(value->bytes);
  }
}

void cRegistry::SetValue(const Variant& value) {
  SettingsFile& file = TreeFile(ClassKey);
  if (file.read_only() || !IsStorableKeyPath(SectionKey)) RaiseSetFailed(*this, value);
  std::optional<RegistryValue> stored;
  switch (ValueType) {
    case kRegSz:
    case kRegExpandSz: {
      String text;
      try {
        text = ToString(value);
      } catch (const Error&) {
        RaiseSetFailed(*this, value);
      }
      const int32_t type = CountPercent(text) >= 2 ? kRegExpandSz : kRegSz;
      stored = RegistryValue::Text(type, text);
      break;
    }
    case kRegBinary: {
      if (!IsByteArray(value)) RaiseSetFailed(*this, value);
      std::vector<uint8_t> bytes;
      for (const Variant& b : value.as_array()->elements())
        bytes.push_back(b.as_byte());
      stored = RegistryValue::Bytes(kRegBinary, std::move(bytes));
      break;
    }
    case kRegDword:
    case kRegDwordBigEndian: {
      int32_t number;
      if (value.type() == VarType::Integer) {
        number = value.as_integer();
      } else if (value.type() == VarType::Long) {
        number = value.as_long();
      } else {
        RaiseSetFailed(*this, value);
      }
      stored = RegistryValue::Number(kRegDword, static_cast<uint32_t>(number));
      break;
    }
    default:
      break;  // other types write nothing; the key is still created
  }
  const auto result = file.Update([&](SettingsTree& tree) {
    SettingsNode& key = tree.Create(SectionKey);
    if (stored) key.SetValue(ValueKey, std::move(*stored));
    return true;
  });
  if (result == SettingsFile::SaveResult::kRefused) RaiseSetFailed(*this, value);
}

bool cRegistry::EnumerateValues(std::vector<String>& names, int32_t& count) const {
  names.clear();
  count = 0;
  const SettingsNode* key = TreeFile(ClassKey).Tree().Find(SectionKey);
  if (!key) return true;
  for (const auto& entry : key->values())
    names.push_back(entry.first);
  count = static_cast<int32_t>(names.size());
  return true;
}

bool cRegistry::EnumerateSections(std::vector<String>& names, int32_t& count) const {
  names.clear();
  count = 0;
  const SettingsNode* key = TreeFile(ClassKey).Tree().Find(SectionKey);
  if (!key) return true;
  for (const auto& child : key->children())
    names.push_back(child->name());
  count = static_cast<int32_t>(names.size());
  return true;
}

void cRegistry::CreateKey() {
  SettingsFile& file = TreeFile(ClassKey);
  const auto fail = [&] {
    Raise(u"Failed to create registry Key: '" + NumberText(ClassKey) + u"',Section: '" +
          SectionKey + u"'");
  };
  if (file.read_only() || !IsStorableKeyPath(SectionKey)) fail();
  const auto result = file.Update([&](SettingsTree& tree) {
    if (tree.Find(SectionKey)) return false;  // already there: nothing to save
    tree.Create(SectionKey);
    return true;
  });
  if (result == SettingsFile::SaveResult::kRefused) fail();
}

void cRegistry::DeleteKey() {
  SettingsFile& file = TreeFile(ClassKey);
  const auto result =
      file.read_only() ? SettingsFile::SaveResult::kRefused
                       : file.Update([&](SettingsTree& tree) { return tree.Delete(SectionKey); });
  if (result != SettingsFile::SaveResult::kSaved) {
    Raise(u"Failed to delete registry Key: '" + NumberText(ClassKey) + u"',Section: '" +
          SectionKey + u"'");
  }
}

void cRegistry::DeleteValue() {
  // Deleting a value takes two steps, as with the registry: open the key with delete access
  // (refused in the machine tree, or when the key is missing), then delete the value.
  SettingsFile& file = TreeFile(ClassKey);
  if (file.read_only() || !file.Tree().Find(SectionKey)) {
    Raise(u"Failed to open key '" + NumberText(ClassKey) + u"',Section: '" + SectionKey +
          u"' for delete access");
  }
  const auto result = file.Update([&](SettingsTree& tree) {
    SettingsNode* key = tree.Find(SectionKey);
    return key && key->DeleteValue(ValueKey);
  });
  if (result != SettingsFile::SaveResult::kSaved) {
    Raise(u"Failed to delete registry Key: '" + NumberText(ClassKey) + u"',Section: '" +
          SectionKey + u"',Key: '" + ValueKey + u"'");
  }
}

}  // namespace qv
