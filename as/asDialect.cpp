// A row for each number leads to its handler. Three groups do nothing but say so: words of modules
// that are linked later, which an absolute assembler has no use for, words of pages of the listing,
// and numbers without a row, which are silent.
#include "as/asDialect.h"

#include "as/asDiag.h"
#include "as/asEqu.h"
#include "as/asLabel.h"
#include "as/asListing.h"
#include "as/asOptions.h"
#include "as/asPlace.h"
#include "as/asPseudo.h"
#include "as/asSource.h"
#include "expr/evaluate.h"
#include "target/operand.h"
#include "util/path.h"
#include "util/text.h"
#include "util/wrap.h"

#include <string>

std::uint32_t MC6809_anticipated_dp = 0;

namespace {

constexpr int kCarriedOut = 2;
constexpr int kFailed = -1;

// The file is opened at once and read from the next line on. Its lines belong to no label of this
// one, and the listing shows no address for a line that only names a file.
int do_include() {
    pending_listLC = 0;
    resetLabel();
    std::string name;
    copyFname(name, Col_Ptr);
    if (push_source(name.c_str()) == 0) {
        vpFatal("File '%s' not found", name.c_str());
    }
    newuse = 1;
    return kCarriedOut;
}

void warn_old_fashioned(const char *word, const char *instead) {
    vpWarning("Old fashioned directive: '%s', use '%s' instead", word, instead);
}

// A listing that was not asked for can't be switched on; the switch for skipped lines is remembered
// in any case.
int do_list() {
    warn_old_fashioned("LIST", "OPTION LIST");
    listing_on = O_list != 0 ? 1 : listing_on;
    return 1;
}

int do_nolist() {
    warn_old_fashioned("NOLIST", "OPTION NOLIST");
    listing_on = O_list != 0 ? 0 : listing_on;
    return 1;
}

int do_listcond() {
    warn_old_fashioned("LISTCOND", "OPTION LISTCOND");
    uncond_listing_on = 1;
    return 1;
}

int do_nolistcond() {
    warn_old_fashioned("NOLISTCOND", "OPTION NOLISTCOND");
    uncond_listing_on = 0;
    return 1;
}

int do_unimplemented() {
    Warning("Unimplemented assembler directive, ignored");
    return kFailed;
}

// What follows them belongs to no label.
int do_module_word() {
    resetLabel();
    return do_unimplemented();
}

int do_define() {
    warn_old_fashioned("DEFINE or XDEF", "EXPORT");
    return do_module_word();
}

int do_extern() {
    warn_old_fashioned("EXTERN or XREF", "IMPORT");
    return do_module_word();
}

// Only remembered: no instruction of this target depends on it.
int do_set_direct_page() {
    ClearOp(opnd1);
    if (ppexpr(opnd1, 1) != 0) {
        return kFailed;
    }
    if (!isblanc(*Col_Ptr)) {
        return fail("Bad constant delimiter");
    }
    if (opnd1.value > 255) {
        return fail("DPR register is 8 bits");
    }
    MC6809_anticipated_dp = low_32(opnd1.value);
    return kCarriedOut;
}

// ---- The numbers ----

struct NumberedDirective {
    std::uint32_t token;
    int (*handler)();
};

// clang-format off
constexpr NumberedDirective kDialectDirectives[] = {
    {DIR_INCLUDE,    do_include},
    {DIR_LIST,       do_list},
    {DIR_LISTCOND,   do_listcond},
    {DIR_NOLIST,     do_nolist},
    {DIR_NOLISTCOND, do_nolistcond},
    {DIR_SET,        [] { return DoEqu(1); }},
    {24,             do_module_word},
    {25,             do_module_word},
    {26,             do_module_word},
    {DIR_DEFINE,     do_define},
    {28,             do_module_word},
    {DIR_EXTERN,     do_extern},
    {30,             do_module_word},
    {31,             do_module_word},
    {32,             do_module_word},
    {33,             do_module_word},
    {34,             do_module_word},
    {36,             do_module_word},
    {37,             do_module_word},
    {52,             do_unimplemented},
    {DIR_SETDP,      do_set_direct_page},
    {54,             do_unimplemented},
    {55,             do_unimplemented},
    {56,             do_unimplemented},
    {57,             do_unimplemented},
    {58,             do_unimplemented},
};
// clang-format on

} // namespace

int do_directive(std::uint32_t token) {
    for (const NumberedDirective &directive : kDialectDirectives) {
        if (directive.token == token) {
            return directive.handler();
        }
    }
    return kFailed;
}

void dialect_new_pass() { MC6809_anticipated_dp = 0; }
