// The project file: Save writes the project as one XML file, one element per object and one
// attribute per property that the object's bag marks FileSave, in registration order; Load
// reads such a file back into a fresh root. Tyx.Save and Tyx.Load come here through the
// root's services.
//
//   SaveProjectFile(*tyx, u"/home/me/shop.qvp");   // raises on a bad path
//   LoadProjectFile(*tyx, u"/home/me/shop.qvp");   // the outcome is tyx->ProjErr()
#pragma once

#include <functional>

#include "automation/string.h"

namespace qv {

class Tyx;

// Writes the file, replacing any file of that name. A failure (a bad path, a locked file, a
// Boolean property whose value is no Boolean) raises, and what was written so far stays.
void SaveProjectFile(Tyx& tyx, const String& project_file);

// The comparison of a reopened project with its live database when AutoSync is on: it reads
// the schema, counts the differences, asks the user and synchronises. It reports through
// ProjErr and message boxes, never by raising.
using LoadSyncCheck = std::function<void(Tyx& tyx)>;

// Reads the file into the root. Never raises: the outcome is ProjErr, empty on success or one
// of the product's load texts. `sync_check` runs when the file leaves AutoSync on; none means
// the check that this build has (see load_sync_check.h).
void LoadProjectFile(Tyx& tyx, const String& project_file, const LoadSyncCheck& sync_check = {});

// Sets each table's TblKey to the sorted comma list of its primary-key field names.
void RebuildTableKeys(Tyx& tyx);

}  // namespace qv
