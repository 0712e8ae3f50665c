// Constants: the directive that gives its label the value of an expression.
//
// Pass 0 defines them, so that they are known ahead of their lines; pass 1 meets each again, and
// the final pass checks that no name has two values.
#pragma once

// EQU; with set, the redefinable form. 2, or -1 after an error.
int DoEqu(int set);
