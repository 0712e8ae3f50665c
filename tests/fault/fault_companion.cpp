#include "tests/fault/fault_main.h"
#include "zirpa/commandLine.h"

int run_program(int argc, const char *const *argv) { return zirpa_main(argc, argv); }
