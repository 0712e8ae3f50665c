#include "tests/unit/support.h"

#include "as/asMain.h"
#include "as/asOptions.h"
#include "as/asOutput.h"
#include "as/asSource.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <unistd.h>

namespace {

void throw_end_of_run(int status) { throw EndOfRun{status}; }

} // namespace

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
    end_run_hook = throw_end_of_run;
    Pass = 1;
}

void RunTest::TearDown() {
    end_run_hook = nullptr;
    standard_output.flush();
    start_up("HXzirpa");
    ::close(output_);
    std::filesystem::current_path(directory_before_);
    std::filesystem::remove_all(directory);
}

void RunTest::set_line(const std::string &text) {
    Line.assign(text.data(), text.size());
    Line_Ptr = Line.begin();
    Col_Ptr = Line.begin();
}

void RunTest::enter_final_pass() {
    Pass = 2;
    Pass2 = 1;
    O_warn = 1;
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

void RunTest::write_file(const std::string &name, const std::string &text) {
    std::ofstream(name, std::ios::binary) << text;
}

std::string RunTest::read_text(const std::string &name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool RunTest::file_exists(const std::string &name) { return std::filesystem::exists(name); }
