// cRegistry: the cursor through which all settings-store traffic goes. The caller sets
// ClassKey, SectionKey and ValueKey, then reads or writes Value. The two trees behind it are
// the files of SettingsFile: the user's tree (read and write) and the machine tree shipped
// with the program (read only). Key paths keep the Windows form, "Software\Quorvex\5.3\Settings".
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

// The two roots of this system, as signed 32-bit numbers (how error texts print them).
inline constexpr int32_t kHkeyCurrentUser = static_cast<int32_t>(0x80000001);
inline constexpr int32_t kHkeyLocalMachine = static_cast<int32_t>(0x80000002);

// Registry value types.
enum RegistryType : int32_t {
  kRegNone = 0,
  kRegSz = 1,              // text
  kRegExpandSz = 2,        // text with %VARIABLES%, expanded on reading
  kRegBinary = 3,          // bytes
  kRegDword = 4,           // signed 32-bit number
  kRegDwordBigEndian = 5,  // the same, its four bytes stored in reverse order
  kRegMultiSz = 7,         // texts, each ended by a NUL character
};

// The number of every failure of a write, and the source that goes with it.
inline constexpr int32_t kRegistryErrorNumber = 26001;
inline constexpr std::u16string_view kRegistryErrorSource = u"TyxClass.cRegistry";

// Where the trees live: the user's tree is $XDG_CONFIG_HOME/quorvex/settings (default
// ~/.config/quorvex/settings), the machine tree <data folder>/machine-settings. Both are
// looked up again on every use, so a changed HOME takes effect at once.
std::filesystem::path UserSettingsPath();
std::filesystem::path MachineSettingsPath();

class cRegistry {  // NOLINT(readability-identifier-naming): the name scripts and docs use
 public:
  int32_t ClassKey = kHkeyCurrentUser;  // kHkeyCurrentUser or kHkeyLocalMachine
  String SectionKey;                    // key path below the root, "\"-separated
  String ValueKey;                      // value name; "" is the key's default value
  int32_t ValueType = kRegSz;           // set by a read, used by a write
  Variant Default;                      // what Value() gives when the value can't be read

  // True when SectionKey exists in the tree of ClassKey.
  bool KeyExists() const;

  // The value: types 1 and 7 as text (7 keeps the NUL after each item but the last
  // terminator), 2 as text with environment variables expanded, 4 as Long, 5 as Long with
  // the bytes reversed, any other type as an array of Byte. A missing key or value gives
  // Default and leaves ValueType as it was.
  Variant Value();

  // Writes by ValueType: 1 and 2 store the text (as type 2 when it holds two "%"), 3 needs an
  // array of Byte, 4 and 5 need an Integer or Long (stored as type 4), other types write
  // nothing. Creates the key as needed. Raises 26001 on refusal (the machine tree is read
  // only) or when the value does not suit the type.
  void SetValue(const Variant& value);

  // The names of the values (subkeys) of SectionKey, in the order they were created, from
  // index 0; `count` is their number. Both always return true; a missing key gives no names.
  bool EnumerateValues(std::vector<String>& names, int32_t& count) const;
  bool EnumerateSections(std::vector<String>& names, int32_t& count) const;

  // Creates SectionKey and the keys above it. Raises 26001 when the tree refuses.
  void CreateKey();
  // Deletes SectionKey, which must exist and have no subkeys. Raises 26001 otherwise.
  void DeleteKey();
  // Deletes ValueKey of SectionKey. Raises 26001 when the key can't be opened for deleting
  // (the machine tree, a missing key) or the value does not exist.
  void DeleteValue();
};

}  // namespace qv
