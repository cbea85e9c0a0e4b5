// The value rules of the project file: how a property's value becomes attribute text on
// saving, how attribute text becomes a stored value on loading, and the version comparison
// that decides whether a file is too old. Writer and reader share them, so both sides of
// every rule live here together.
#pragma once

#include <string>
#include <string_view>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

class TyProperty;

// Replaces "&", "<", ">" and "\"" by their entity references. Because "&" is handled first,
// the references that the other three produce are never escaped again.
String XmlEscape(StringView text);

// The on-disk text of a property's value: the value as text (Booleans as "True"/"False",
// numbers in decimal, Empty and Null as ""), escaped, with CR LF turned into "|" for
// FldTagValues, and as "1"/"0" when the property's DataType is "Boolean". A Boolean property
// whose text is no Boolean raises 13, as the platform's conversion does.
String AttributeText(StringView escaped_name, StringView data_type, const Variant& value);

// The writer's form of the same rules: appends `name="value" ` (name and value escaped, one
// blank after) to UTF-8 text.
void AppendAttribute(std::string& out, StringView name, StringView data_type, const Variant& value);
// Appends text to UTF-8 output with the four characters escaped; with `bars`, each CR LF pair
// becomes "|".
void AppendEscaped(std::string& out, StringView text, bool bars = false);

// Compares the first numbers of two dotted versions, at most three and no more than the
// shorter one has: True only when `a` is greater at the first number that differs. An empty
// `b`, a part that is no number, or equal numbers give False.
bool VersionGreater(StringView a, StringView b);

// Attribute text to a stored value by the property's DataType, compared exactly: "Boolean",
// "Integer" (16 bits) and "Long" (32 bits) convert, anything else keeps the text. Text that
// does not convert gives Empty without an error: "1" and "True" read as True, "Yes" as Empty.
Variant ToPropertyValue(const String& text, StringView data_type);

// The same for text that is still UTF-8, as the reader holds it; the common short forms
// ("0", "1", plain whole numbers) convert without building a string first.
Variant ToPropertyValue(std::string_view utf8, StringView data_type);

}  // namespace qv
