// The common helpers of the engine: captions and clean names, sorted key lists, percentages,
// fixed date and padded texts, registry values by a short root name, the user's folders and
// the system's character set.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

// The file that marks a folder of an application as one that receives uploads: `quorvex serve`
// runs no page in such a folder or below it, however the page got there. Generation puts it
// into the upload folders it makes, and the upload object into every folder it stores in.
inline constexpr std::string_view kUploadFolderMarker = ".quorvex-uploads";

// Splits a name into words at blanks, "-", "_" and where upper case follows lower case:
// "CustomerID" -> "Customer ID", "order_date" -> "order date", "Item2" -> "Item 2".
String ToCaption(StringView name);

// `name` without any "/" and without blanks.
String CleanName(StringView name);

// The comma-separated list sorted ascending by character code, by the bubble sort whose
// quirk callers see: an element that is never moved keeps its blanks ("a, b" stays as it is).
String SortKeyList(StringView list);

// part / whole * 100 rounded half to even; a whole of 0 counts as 1 and a part above the
// whole counts as the whole. Raises 6 when the result does not fit 16 bits.
int16_t PercentOf(double part, double whole);

// "yyyy/mm/dd hh:nn:ss" for anything that reads as a date; any other value comes back as its
// plain text ("" when it has none).
String DateStamp(const Variant& value);

// The text of `value` with "0" in front up to `width` characters. A longer text raises 5.
String ZeroPad(const Variant& value, int32_t width);

// A registry value through the shared cursor: `root` "HKLM" is the machine tree, anything else
// the user's. A missing value gives the cursor's Default (Empty unless set). The value's type
// is noted in Vars().RegValueType.
Variant ReadRegValue(StringView root, StringView key, StringView name);
// Writes a registry value with the given type, creating the key as needed. Raises 26001 when
// the store refuses.
void WriteRegValue(StringView root, StringView key, StringView name, int32_t type,
                   const Variant& value);

// Shell folder numbers that SpecialFolder knows.
enum SpecialFolderId : int32_t {
  kFolderPersonal = 5,      // the user's documents: $XDG_DOCUMENTS_DIR, else $HOME/Documents
  kFolderMyDocuments = 12,  // the same folder
  kFolderAppData = 26,      // $XDG_CONFIG_HOME, else $HOME/.config
  kFolderProfile = 40,      // $HOME
};

// The path of a shell folder, without a trailing "/". The documents folder is created on first
// use and is never "". An unknown folder number gives "". `owner` is the host's window and
// has no use here.
String SpecialFolder(int32_t owner, int32_t folder_id);

// Fills Vars().SystemCodePage and Vars().SystemCharset: the system's code page is UTF-8 here,
// 65001 and "utf-8".
void LoadSystemCharset();

// The character set name of a Windows code page given as number or text; "" for a code page
// the table does not list.
String CharsetOfCodePage(const Variant& code_page);

}  // namespace qv
