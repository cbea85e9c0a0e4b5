// The user's preferred values of project settings, kept in the settings store rather than in
// the project: LoadDefault brings them in before a project is created or read, SaveDefault
// stores them, and SeedUserRegistry copies the machine's defaults on a user's first run.
// The RegSave flag of each property decides what takes part.
#pragma once

#include "automation/variant.h"

namespace qv {

class Tyx;

// Reads the root's (and the database's) RegSave settings and the engine options, then puts
// back the settings that always start from fixed values.
void LoadDefault(Tyx& tyx);
// Writes the RegSave settings, the engine options and the extension list. A value that the
// store cannot take as its format (an empty number after DeleteProj) raises 26001.
void SaveDefault(Tyx& tyx);
// Copies the machine tree's settings and extensions keys, with every key below them, into the
// user's tree, replacing what is there.
void SeedUserRegistry();
// Copies one machine key and its subkeys into the user's tree.
void CopyRegistryTree(StringView key);

// A value read from the store in a setting's type: "boolean", "integer", "long" (compared in
// lower case), "string" (through StripQuotes); any other type keeps the value. A value that
// does not convert gives Empty, never an error.
Variant ToSettingValue(const Variant& value, StringView data_type);
// Trims blanks, then strips a matching pair of outer quotes (" or ') and trims again, as long
// as one is there: " 'abc' " gives "abc", and "'a\"" stays as it is.
String StripQuotes(StringView text);

}  // namespace qv
