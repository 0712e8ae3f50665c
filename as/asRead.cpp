// Whatever a module keeps of a line is reset here, ahead of the next one, by the module itself; so
// no step of a line has to clean up after the others, nor after an error.
#include "as/asRead.h"

#include "as/asDiag.h"
#include "as/asLabel.h"
#include "as/asSource.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/encode.h"
#include "target/operand.h"
#include "target/scan.h"

namespace {

// A module with state of a line is one more call here. Each is inline, since this is done for every
// line of every pass.
void reset_line_state() {
    diag_new_line();
    label_new_line();
    emit_new_line();
    scan_new_line();
    operand_new_line();
    symtab_new_line();
    encode_new_line();
}

} // namespace

int as_read_line() {
    // END takes effect here: the rest of its file is not read.
    if (endflag != 0 && pop_source() == 0) {
        return 0;
    }
    reset_line_state();
    return read_source_line() ? 1 : 0;
}
