// The command line of zirpa.
#pragma once

// Carries out a command line. Returns the exit status.
int zirpa_main(int argc, const char *const *argv);
