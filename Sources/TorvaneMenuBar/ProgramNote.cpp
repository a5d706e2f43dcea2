#include "TorvaneUpdates/ProgramNote.h"

#include "TorvaneUpdates/Architecture.h"

// What an update is told by: compiled for each program, with its own identity.
TORVANE_PROGRAM_NOTE(TORVANE_APPLICATION_ID, TORVANE_VERSION, torvane::Updates::targetArchitecture);
