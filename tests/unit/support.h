// What the unit tests share: a run set up anew for each test, a line to scan, captured output, and
// outputs that can be read back.
#pragma once

#include "as/asStreams.h"
#include "util/ahead.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// The text with room to look ahead from its terminator on, as texts that are scanned have it.
inline std::string with_room(const std::string &text) {
    return text + std::string(kLookAhead, '\0');
}

// Every test begins as a run does, in a fresh temporary working directory, in pass 1.
class RunTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Resets what every pass resets.
    static void begin_pass();

    // Makes text the current line and puts the scan position at its start.
    static void set_line(const std::string &text);

    // Makes text the current line as the line reader does, with the state of the line reset.
    static void begin_line(const std::string &text);

    // Switches to the final pass, in which reports are made, with warnings on.
    static void enter_final_pass();

    // Begins the final pass over the files that an earlier pass has read.
    static void replay_in_final_pass();

    // The status with which a call ends the run, or -1 if it returns.
    template <typename Call> static int end_status(Call call) {
        try {
            call();
        } catch (const EndOfRun &end) {
            return end.status;
        }
        return -1;
    }

    // What has been written to standard output since the last call.
    std::string take_output();

    // Makes a source the current file, so that reports name it.
    static void open_source_file(const std::string &name, const std::string &text);

    // Opens an output without a temporary file, so that what has been flushed can be read back.
    void open_output(OutputFile &file, const std::string &name);

    // Creates an output as a run does: it has its name from closing on.
    static bool create_output(OutputFile &file, const std::string &name, OldFile old_file);

    static void write_file(const std::string &name, const std::string &text);
    static std::string read_text(const std::string &name);
    static bool file_exists(const std::string &name);

    // The temporary working directory's path.
    std::string directory;

  private:
    int output_ = -1;
    std::vector<int> descriptors_; // of the outputs opened here
    std::string directory_before_;
};

// A test in which the source "prog.szirpa", which is empty, is the current file, so that reports
// name it and a line of the test's choice.
class ReportTest : public RunTest {
  protected:
    void SetUp() override;

    // Switches to the final pass, at line 1.
    static void begin_reports();

    static void set_line_number(int number);

    // What is printed for a report on the current line.
    std::string error(const std::string &text) const;
    std::string warning(const std::string &text) const;

  private:
    std::string report(const std::string &kind, const std::string &text) const;
};
