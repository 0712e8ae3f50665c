#include "as/asMain.h"
#include "tests/fault/fault_main.h"

int run_program(int argc, const char *const *argv) { return as_main(argc, argv); }
