#include "zirpa/commandLine.h"

int main(int argc, char **argv) { return zirpa_main(argc, argv); }
