// The storage of names: records, chains, the index and the limit of the table.
#include "symtab/names.h"

#include "as/asOptions.h"
#include "tests/unit/support.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

class Names : public RunTest {
  protected:
    static Symbol *add(const std::string &name) { return enter_name(name).symbol; }
    static Symbol *find(const std::string &name) { return find_name(name); }
};

using Chain = std::vector<const Symbol *>;

// The chain of a number, made anew.
Chain chain(std::size_t number) {
    link_chains();
    return symheads[number];
}

TEST_F(Names, RecordBeginsWithItsNameAlone) {
    const Symbol *symbol = add("loop");
    EXPECT_STREQ(symbol->name, "loop");
    EXPECT_EQ(symbol->name_view(), "loop");
    EXPECT_EQ(symbol->flags, 0U);
    EXPECT_EQ(symbol->file, -1);
    EXPECT_EQ(symbol->bit_size, -1);
    EXPECT_EQ(symbol->segment, nullptr);
}

TEST_F(Names, FoundNameIsExactlyTheStoredOne) {
    const Symbol *symbol = add("a+b");
    EXPECT_EQ(find("a+b"), symbol);
    for (const char *other : {"", "a", "a+", "a+b ", "A+B", "a+c", "b+a"}) {
        EXPECT_EQ(find(other), nullptr) << other;
    }
}

TEST_F(Names, NamesOfEverySizeAreApart) {
    // Sizes on either side of what the hash takes at a time; the last characters differ.
    for (std::size_t size = 1; size <= 33; ++size) {
        const std::string stem(size - 1, 'n');
        const Symbol *first = add(stem + "a");
        const Symbol *second = add(stem + "b");
        EXPECT_EQ(find(stem + "a"), first) << size;
        EXPECT_EQ(find(stem + "b"), second) << size;
        EXPECT_EQ(find(stem + "c"), nullptr) << size;
    }
}

TEST_F(Names, EnteringANameTwiceGivesOneRecord) {
    const EnteredName first = enter_name("loop");
    const EnteredName second = enter_name("loop");
    EXPECT_TRUE(first.is_new);
    EXPECT_FALSE(second.is_new);
    EXPECT_EQ(second.symbol, first.symbol);
    EXPECT_EQ(symcnt, 1U);
}

TEST_F(Names, TextIsTheTablesOwn) {
    std::string name = "loop";
    const Symbol *symbol = add(name);
    name = "pool";
    EXPECT_STREQ(symbol->name, "loop");
}

TEST_F(Names, AreStoredInUpperCaseWhileCaseDoesNotCount) {
    O_symbol_case_sensitive = 0;
    Symbol *letter = add("a");
    EXPECT_STREQ(letter->name, "A");
    EXPECT_EQ(find("A"), letter);
    EXPECT_EQ(chain('A'), Chain{letter});
    EXPECT_EQ(chain('a'), Chain{});
}

TEST_F(Names, LongNamesAreStoredWhole) {
    for (const std::size_t size : {127U, 128U, 129U, 300U}) {
        const std::string name(size, 'n');
        add(name);
        ASSERT_NE(find(name), nullptr);
        EXPECT_EQ(find(name)->name, name);
    }
}

TEST_F(Names, ChainsAreTheSumOfTheCharacters) {
    const Symbol *first = add("AB");
    const Symbol *second = add("BA");
    EXPECT_EQ(chain(131), (Chain{first, second}));
    EXPECT_EQ(chain('a'), Chain{});
    const Symbol *lower = add("a");
    EXPECT_EQ(chain('a'), Chain{lower});
    // "zzz" is 366, 110 modulo 256.
    const Symbol *high = add("zzz");
    EXPECT_EQ(chain(110), Chain{high});
    // Only the leading run counts: the comma and what follows do not.
    const Symbol *run = add("W,1");
    EXPECT_EQ(chain('W'), Chain{run});
}

TEST_F(Names, RecordsComeInBlocksOf200AndStayInPlace) {
    init_as_symbol_table();
    EXPECT_EQ(symlistcnt, 1U);
    EXPECT_EQ(symcnt, 0U);
    Symbol *first = add("first");
    for (int number = 1; number < 200; ++number) {
        add("n" + std::to_string(number));
    }
    EXPECT_EQ(symlistcnt, 1U);
    EXPECT_EQ(symcnt, 200U);
    add("next");
    EXPECT_EQ(symlistcnt, 2U);
    EXPECT_EQ(symcnt, 1U);
    EXPECT_EQ(find("first"), first);
    EXPECT_STREQ(first->name, "first");
}

TEST_F(Names, TableHolds39800NamesAndOneMoreEndsTheRun) {
    for (int number = 1; number < 39800; ++number) {
        add("n" + std::to_string(number));
    }
    EXPECT_EQ(end_status([] { add("n39800"); }), -1);
    EXPECT_EQ(find("n39800")->name_length, 6U);
    EXPECT_EQ(find("n1")->name_length, 2U);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(end_status([] { add("n39801"); }), 255);
    EXPECT_EQ(take_output(), "(F1010) Symbol table overflow\nTerminated due to fatal error(s)");
}

TEST_F(Names, TableEmptiesForANewRun) {
    add("loop");
    closesym();
    init_as_symbol_table();
    EXPECT_EQ(find("loop"), nullptr);
    EXPECT_EQ(chain(('l' + 'o' + 'o' + 'p') % 256), Chain{});
    const Symbol *again = add("loop");
    EXPECT_EQ(find("loop"), again);
    EXPECT_EQ(symcnt, 1U);
}

TEST_F(Names, NamesThatDifferInOnePlaceAreDifferentNames) {
    // Of a long name the first and last eight bytes are compared first, and then all of it.
    for (const std::size_t size : {1U, 4U, 7U, 8U, 9U, 15U, 16U, 17U, 24U, 25U, 40U, 128U}) {
        init_as_symbol_table();
        const std::string name(size, 'n');
        const Symbol *first = add(name);
        std::vector<const Symbol *> others;
        for (std::size_t i = 0; i < size; ++i) {
            std::string other = name;
            other[i] = 'o';
            EXPECT_EQ(find(other), nullptr) << other;
            others.push_back(add(other));
            EXPECT_EQ(find(other), others.back()) << other;
        }
        EXPECT_EQ(find(name), first) << size;
    }
}

TEST_F(Names, ReleasedTableHasHandedOutNothing) {
    add("a");
    closesym();
    EXPECT_EQ(symlistcnt, 0U);
    EXPECT_EQ(symcnt, 0U);
    EXPECT_TRUE(std::all_of(symheads.begin(), symheads.end(),
                            [](const auto &made) { return made.empty(); }));
}

} // namespace
