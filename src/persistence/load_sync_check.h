// The check that a reopened project still matches its live database, run by Load when the
// file leaves AutoSync on. The real check reads the schema and merges differences, which the
// schema and synchronisation subsystems provide; they sit above persistence, so the facade
// hands their check to LoadProjectFile. Until it does, this stand-in runs.
#pragma once

namespace qv {

class Tyx;

// Sets the status title of the check and finds no differences, so the project stays as the
// file had it. What belongs here once the schema reader and synchronisation exist: read the
// database's DBType, DBUID, DBPwd, DBPath, DBPhyPath, DBUseServerMapPath, DBConnstr and
// DBSchema; load the live schema through TyxSchema.LoadDB; on a failure show the "Unable to
// load database information!" message box and keep ProjErr; otherwise add up the three
// difference counts, ask the keep-or-update question when the sum is above 0, and run the four
// synchronisation steps when the user chose to update.
void CheckWithoutSchema(Tyx& tyx);

}  // namespace qv
