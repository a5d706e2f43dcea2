#include "TorvaneUpdates/ProgramNote.h"

#ifdef WITH_NOTE
TORVANE_PROGRAM_NOTE("org.example.Program", "1.2.3b4", "riscv64");
#endif

int main() {
    return 0;
}
