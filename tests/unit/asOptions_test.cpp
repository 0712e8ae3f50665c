// Option flags: their defaults.
#include "as/asOptions.h"
#include "tests/unit/support.h"

namespace {

class Options : public RunTest {};

TEST_F(Options, EveryFlagHasItsDefaultInANewRun) {
    for (std::int16_t *flag :
         {&O_symtab, &O_cout, &O_symdebug, &O_warn, &O_symbol_case_sensitive,
          &O_directive_style_pure, &O_directive_style_native, &O_directive_style_gnu, &O_oflag,
          &O_list, &O_compiler_generated_input, &O_aliased_input}) {
        *flag = 7;
    }
    record_type = 3;
    Pass = 2;
    Pass2 = 1;
    options_new_run();
    EXPECT_EQ(O_symtab, 0);
    EXPECT_EQ(O_cout, 0);
    EXPECT_EQ(O_symdebug, 0);
    EXPECT_EQ(O_warn, 0);
    EXPECT_EQ(O_symbol_case_sensitive, 1);
    EXPECT_EQ(O_directive_style_pure, 1);
    EXPECT_EQ(O_directive_style_native, 0);
    EXPECT_EQ(O_directive_style_gnu, 0);
    EXPECT_EQ(O_oflag, 0);
    EXPECT_EQ(O_list, 0);
    EXPECT_EQ(O_compiler_generated_input, 0);
    EXPECT_EQ(O_aliased_input, 0);
    EXPECT_EQ(record_type, 2);
    EXPECT_EQ(Pass, 0);
    EXPECT_EQ(Pass2, 0);
}

TEST_F(Options, NamesAndVersionAreThoseOfTheBanner) {
    EXPECT_STREQ(kProgramName, "HXzirpa");
    EXPECT_STREQ(kProcessorName, "ZIRPA");
    EXPECT_STREQ(kVersion, "1.3");
    EXPECT_STREQ(kSourceExtension, ".szirpa");
}

} // namespace
