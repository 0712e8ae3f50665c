#include "tests/unit/support.h"
#include "as/asPlace.h"
#include "as/asSource.h"

#include "as/asDiag.h"
#include "as/asDialect.h"
#include "as/asLabel.h"
#include "as/asListing.h"
#include "as/asMain.h"
#include "as/asOptions.h"
#include "symtab/symtab.h"
#include "target/emit.h"
#include "target/encode.h"
#include "target/location.h"
#include "target/operand.h"
#include "target/scan.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <unistd.h>

void RunTest::SetUp() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zirpa_XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    directory = std::filesystem::canonical(pattern).string();
    directory_before_ = std::filesystem::current_path().string();
    std::filesystem::current_path(directory);
    start_up("HXzirpa");
    output_ = ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    ASSERT_GE(output_, 0);
    standard_output.attach(output_);
    Pass = 1;
    begin_pass();
}

void RunTest::TearDown() {
    standard_output.flush();
    start_up("HXzirpa");
    ::close(output_);
    for (const int descriptor : descriptors_) {
        ::close(descriptor);
    }
    descriptors_.clear();
    std::filesystem::current_path(directory_before_);
    std::filesystem::remove_all(directory);
}

void RunTest::begin_pass() {
    source_new_pass();
    diag_new_pass();
    location_new_pass();
    label_new_pass();
    listing_new_pass();
    dialect_new_pass();
    resetLabel();
    begin_line("");
}

void RunTest::set_line(const std::string &text) {
    Line.assign(text.data(), text.size());
    Col_Ptr = Line_Ptr;
}

void RunTest::begin_line(const std::string &text) {
    diag_new_line();
    label_new_line();
    emit_new_line();
    encode_new_line();
    operand_new_line();
    scan_new_line();
    forwardref = 0;
    set_line(text);
}

void RunTest::enter_final_pass() {
    Pass = 2;
    Pass2 = 1;
    O_warn = 1;
}

void RunTest::replay_in_final_pass() {
    enter_final_pass();
    source_rewind();
    source_new_counts();
    diag_new_counts();
    location_new_pass();
    ASSERT_EQ(push_source(nullptr), 1);
}

std::string RunTest::take_output() {
    standard_output.flush();
    const off_t size = ::lseek(output_, 0, SEEK_END);
    std::string text(static_cast<std::size_t>(size), '\0');
    EXPECT_EQ(::pread(output_, text.data(), text.size(), 0), size);
    EXPECT_EQ(::ftruncate(output_, 0), 0);
    ::lseek(output_, 0, SEEK_SET);
    return text;
}

void RunTest::open_source_file(const std::string &name, const std::string &text) {
    write_file(name, text);
    ASSERT_EQ(push_source(name.c_str()), 1);
}

void RunTest::open_output(OutputFile &file, const std::string &name) {
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    ASSERT_GE(descriptor, 0);
    descriptors_.push_back(descriptor);
    file.attach(descriptor);
}

bool RunTest::create_output(OutputFile &file, const std::string &name, OldFile old_file) {
    return file.destination().look_up(name, old_file) && file.create();
}

void RunTest::write_file(const std::string &name, const std::string &text) {
    std::ofstream(name, std::ios::binary) << text;
}

std::string RunTest::read_text(const std::string &name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool RunTest::file_exists(const std::string &name) { return std::filesystem::exists(name); }

void ReportTest::SetUp() {
    RunTest::SetUp();
    open_source_file("prog.szirpa", "");
}

void ReportTest::begin_reports() {
    enter_final_pass();
    set_line_number(1);
}

void ReportTest::set_line_number(int number) {
    Line_no = number;
    realline = number;
}

std::string ReportTest::error(const std::string &text) const { return report("Error", text); }

std::string ReportTest::warning(const std::string &text) const { return report("Warning", text); }

std::string ReportTest::report(const std::string &kind, const std::string &text) const {
    return directory + "/prog.szirpa (" + std::to_string(Line_no) + ") " + kind + ": " + text +
           "\n";
}
