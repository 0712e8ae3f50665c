// Temporary files: they take a lasting name or go, whatever ends the process.
#include "util/temporary.h"

#include "tests/calls/system_calls.h"
#include "tests/unit/support.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Temporary : public RunTest {
  protected:
    void create(const std::string &text, const std::string &in = "") {
        const int descriptor = file_.create(in);
        ASSERT_GE(descriptor, 0);
        ASSERT_EQ(::write(descriptor, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        ::close(descriptor);
    }

    static std::size_t count_of_files() {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(".")) {
            ++count;
        }
        return count;
    }

    TemporaryFile file_;
};

TEST_F(Temporary, LiesInTheDirectoryUnderANameOfItsOwn) {
    std::filesystem::create_directory("sub");
    create("text", "sub/");
    EXPECT_TRUE(file_.exists());
    const auto entry = *std::filesystem::directory_iterator("sub");
    const std::string name = entry.path().filename();
    EXPECT_TRUE(name.starts_with("HXzirpa-" + std::to_string(::getpid()) + "-")) << name;
    EXPECT_TRUE(name.ends_with(".tmp")) << name;
    EXPECT_EQ(read_text("sub/" + name), "text");
}

TEST_F(Temporary, HasTheModeOfANewFile) {
    const mode_t before = ::umask(027);
    create("text");
    ::umask(before);
    ASSERT_TRUE(file_.publish("out"));
    struct stat status {};
    ASSERT_EQ(stat("out", &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(Temporary, TakesTheNameOfAnOldFile) {
    write_file("out", "old");
    create("text");
    EXPECT_EQ(read_text("out"), "old");
    EXPECT_TRUE(file_.publish("out"));
    EXPECT_FALSE(file_.exists());
    EXPECT_EQ(read_text("out"), "text");
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(Temporary, IsGoneWhenRemoved) {
    create("text");
    file_.remove();
    file_.remove();
    EXPECT_FALSE(file_.exists());
    EXPECT_EQ(count_of_files(), 0U);
}

TEST_F(Temporary, IsGoneWithItsObject) {
    { const TemporaryFile other; }
    {
        TemporaryFile other;
        ::close(other.create(""));
        EXPECT_EQ(count_of_files(), 1U);
    }
    EXPECT_EQ(count_of_files(), 0U);
}

TEST_F(Temporary, IsGoneWhenItsNameCannotBeTaken) {
    std::filesystem::create_directory("out");
    create("text");
    EXPECT_FALSE(file_.publish("out"));
    EXPECT_FALSE(file_.exists());
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(Temporary, CannotBeCreatedInAMissingDirectory) {
    EXPECT_EQ(file_.create("missing/"), -1);
    EXPECT_FALSE(file_.exists());
}

TEST_F(Temporary, NothingToPublishIsNoFailure) {
    EXPECT_TRUE(file_.publish("out"));
    EXPECT_EQ(count_of_files(), 0U);
}

TEST_F(Temporary, MoreThanTheirNumberAreNotCreated) {
    std::array<TemporaryFile, kMostTemporaryFiles + 1> files;
    for (std::size_t i = 0; i < kMostTemporaryFiles; ++i) {
        const int descriptor = files[i].create("");
        EXPECT_GE(descriptor, 0);
        ::close(descriptor);
    }
    EXPECT_EQ(files.back().create(""), -1);
    files[0].remove();
    const int descriptor = files.back().create("");
    EXPECT_GE(descriptor, 0);
    ::close(descriptor);
}

// A process that was killed may have had the same number.
TEST_F(Temporary, PassesNamesThatAreTaken) {
    create("text");
    const std::string name = std::filesystem::directory_iterator(".")->path().filename();
    const auto dash = name.rfind('-');
    const int number = std::stoi(name.substr(dash + 1));
    file_.remove();
    for (int i = 1; i <= 3; ++i) {
        write_file(name.substr(0, dash + 1) + std::to_string(number + i) + ".tmp", "left");
    }
    create("text");
    EXPECT_EQ(count_of_files(), 4U);
    EXPECT_TRUE(file_.publish("out"));
    EXPECT_EQ(read_text("out"), "text");
}

// One file mounted over another, a sticky directory: here a stranger's file in a directory in which
// only owners rename.
TEST_F(Temporary, BytesGoToAFileWhoseNameCannotBeTaken) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "Only root can take another's part.";
    }
    constexpr uid_t kNobody = 65534;
    std::filesystem::create_directory("shared");
    write_file("shared/out", "a longer old text");
    ASSERT_EQ(::chmod(".", 0755), 0);
    ASSERT_EQ(::chmod("shared", 01777), 0);
    ASSERT_EQ(::chmod("shared/out", 0666), 0);
    ASSERT_EQ(::seteuid(kNobody), 0);
    create("text", "shared/");
    const bool published = file_.publish("shared/out");
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_TRUE(published);
    EXPECT_EQ(read_text("shared/out"), "text");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("shared"), {}), 1);
}

// A file whose name can't be taken and whose bytes can't be copied.
class TemporaryThatCannotBeCopied : public Temporary {
  protected:
    void SetUp() override {
        Temporary::SetUp();
        calls.rename = [](const char *, const char *) {
            errno = EPERM;
            return -1;
        };
    }
    void TearDown() override {
        calls = real_calls;
        Temporary::TearDown();
    }
};

TEST_F(TemporaryThatCannotBeCopied, IsGoneWhenItsBytesCannotBeRead) {
    write_file("out", "old");
    create("text");
    calls.read = [](int, void *, std::size_t) -> ssize_t {
        errno = EIO;
        return -1;
    };
    EXPECT_FALSE(file_.publish("out"));
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(count_of_files(), 1U);
}

TEST_F(TemporaryThatCannotBeCopied, IsGoneWhenItsBytesCannotBeWritten) {
    write_file("out", "old");
    create("text");
    calls.write = [](int, const void *, std::size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
    EXPECT_FALSE(file_.publish("out"));
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(count_of_files(), 1U);
}

// What a signal does that ends the process, without the end: the handler is called by hand, for a
// signal that is ignored.
TEST_F(Temporary, IsRemovedByTheHandlerOfSignals) {
    create("text");
    TemporaryFile another;
    ::close(another.create(""));
    struct sigaction action {};
    ASSERT_EQ(::sigaction(SIGTERM, nullptr, &action), 0);
    ASSERT_NE(action.sa_handler, SIG_DFL);
    action.sa_handler(SIGURG);
    EXPECT_EQ(count_of_files(), 0U);
}

using TemporaryDeathTest = Temporary;

TEST_F(TemporaryDeathTest, EverySignalThatEndsTheProcessRemovesIt) {
    std::size_t ended = 0;
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        // Those that stop the process or are caught by the sanitizers are left out.
        struct sigaction action {};
        if (signal == SIGKILL || signal == SIGSTOP || signal == SIGTSTP || signal == SIGTTIN ||
            signal == SIGTTOU || ::sigaction(signal, nullptr, &action) != 0 ||
            action.sa_handler != SIG_DFL) {
            continue;
        }
        const pid_t child = ::fork();
        if (child == 0) {
            TemporaryFile file;
            ::close(file.create(""));
            TemporaryFile another;
            ::close(another.create(""));
            ::raise(signal);
            file.remove();
            another.remove();
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        if (WIFSIGNALED(status)) {
            EXPECT_EQ(WTERMSIG(status), signal);
            ++ended;
        }
        EXPECT_EQ(count_of_files(), 0U) << signal;
    }
    EXPECT_GT(ended, 40U);
}

TEST_F(TemporaryDeathTest, IgnoredSignalsStayIgnored) {
    const pid_t child = ::fork();
    if (child == 0) {
        (void)std::signal(SIGHUP, SIG_IGN);
        TemporaryFile file;
        ::close(file.create(""));
        ::raise(SIGHUP);
        ::_exit(file.publish("out") ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(file_exists("out"));
}

} // namespace
