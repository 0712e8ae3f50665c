#include "as/asMain.h"

int main(int argc, char **argv) { return as_main(argc, argv); }
