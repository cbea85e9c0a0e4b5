// What the editing commands share: a root with a project read from its file, writing it back,
// and the way a command fails (its words on stderr, a non-zero exit).
#pragma once

#include <string>

#include "automation/string.h"
#include "model/tyx.h"

namespace qv::cli {

// Prints the words on stderr and ends the command with the failure status.
[[noreturn]] void FailWith(const String& words);

// A new root with the project file read into it. Editing never touches the project's database,
// so the comparison with the live schema is left out. A load failure ends the command with the
// engine's words.
Ref<Tyx> OpenProject(const std::string& project_file);

// Writes the project back to its file; a failure ends the command with the error's words.
void SaveProject(Tyx& tyx, const std::string& project_file);

// Ends the command when the name a user gave a new table of the project (a custom view, a
// report) is empty or only blanks: such a table could be neither named nor found again.
void RequireName(const std::string& name, StringView what);

// A setting's value on one line of output: a line break shows as "\n", a value that is no
// text as its type in brackets.
std::string ShownValue(const Variant& value);

// The product's prefix for a message: "Quorvex: " followed by the words.
String ProductMessage(StringView words);

}  // namespace qv::cli
