// ".stab" lines, which a compiler puts into its output for the debugger.
#pragma once

// Carries out the ".stab" line in Line, with its continuation lines where it has any.
void ProcessStab();
