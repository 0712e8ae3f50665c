// The counters stand apart from emission, because labels and expressions need them and have nothing
// to do with bytes.
#include "target/location.h"

std::uint32_t LC = 0;
std::uint32_t dotLC = 0;

void location_new_pass() {
    LC = 0;
    dotLC = 0;
}
