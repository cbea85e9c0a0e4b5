// The generation run and its dry run, the two operations with which a host starts the engine's
// work. GenScript goes from a project and a template package to the output in strictly ordered
// stages: check the project, bring the package and its extensions into the template's working
// folder (only what changed since the cache was written), load the control and language files,
// start the script host and validate, merge the extensions, translate the controls whose
// scripts are out of date, write the cache, and run the controls.
//
// Failures come in two kinds. An abort before the script host starts, or a failed validation,
// leaves its words in ProjErr and returns normally. A missing template name, broken template
// text or a cancel raises an Error of number -1 that reaches the host; the script host then
// stays alive for the next run.
#pragma once

#include <cstdint>

#include "model/tyx.h"

namespace qv {

void GenScript(Tyx& tyx);

// Unpacks the template into the working folder's "Tmp", runs the controls in check mode and
// removes that folder again. The count of output items that exist already: 0 when the real run
// would touch nothing.
int16_t GenCheck(Tyx& tyx);

// The package file of the project's Template setting; a relative path is taken from the data
// folder.
String TemplatePackagePath(const Tyx& tyx);

// The package of an extension: an absolute Template as it stands, else the data folder's
// extensions/ + Template.
String ExtensionPackagePath(StringView template_path);

// True when `version` is below `minimum`: both split at ".", at most three numbers, and no more
// than the shorter list has, compared from the left.
bool VersionBelow(StringView version, StringView minimum);

}  // namespace qv
