// Where outputs go: what a name leads to, what replaces what, and what stays.
#include "util/destination.h"

#include "tests/calls/system_calls.h"
#include "tests/unit/support.h"

#include <cerrno>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

class Destinations : public RunTest {
  protected:
    // Writes a whole output.
    bool write_output(const std::string &name, OldFile old_file, const std::string &text) {
        return begin(name, old_file, text) && destination_.publish();
    }

    // Writes an output, up to the giving of its name.
    bool begin(const std::string &name, OldFile old_file, const std::string &text) {
        if (!destination_.look_up(name, old_file)) {
            return false;
        }
        const int descriptor = destination_.open();
        if (descriptor < 0) {
            return false;
        }
        EXPECT_TRUE(write_fully(descriptor, text));
        EXPECT_EQ(::close(descriptor), 0);
        return true;
    }

    static mode_t mode_of(const std::string &name) {
        struct stat status {};
        EXPECT_EQ(stat(name.c_str(), &status), 0) << name;
        return status.st_mode & 07777U;
    }

    static bool is_link(const std::string &name) { return fs::is_symlink(name); }
    static bool is_there(const std::string &name) { return fs::exists(fs::symlink_status(name)); }

    // The names in the working directory, each followed by a blank.
    static std::string names() {
        std::vector<std::string> found;
        for (const auto &entry : fs::directory_iterator(".")) {
            found.push_back(entry.path().filename());
        }
        std::sort(found.begin(), found.end());
        std::string text;
        for (const std::string &name : found) {
            text += name + " ";
        }
        return text;
    }

    static Destination &look_up(Destination &destination, const std::string &name) {
        EXPECT_TRUE(destination.look_up(name, OldFile::kRewritten)) << name;
        return destination;
    }

    Destination destination_;
};

constexpr std::array kBoth = {OldFile::kRewritten, OldFile::kReplaced};

// ---- The same file

TEST_F(Destinations, NamesOfOneFileAreTheSame) {
    write_file("a", "");
    write_file("b", "");
    fs::create_hard_link("a", "hard");
    fs::create_symlink("a", "soft");
    fs::create_symlink("new", "dangling");
    fs::create_directory("sub");
    const std::vector<std::pair<std::string, std::string>> same = {
        {"a", "./a"},     {"a", "hard"},         {"a", "soft"},      {"hard", "soft"},
        {"new", "./new"}, {"new", "sub/../new"}, {"new", "dangling"}};
    const std::vector<std::pair<std::string, std::string>> others = {{"a", "b"},
                                                                     {"a", "new"},
                                                                     {"new", "newer"},
                                                                     {"new", "sub/new"},
                                                                     {"missing/a", "missing/a"},
                                                                     {".", "."},
                                                                     {"/dev/null", "/dev/null"}};
    Destination first;
    Destination second;
    for (const auto &[one, other] : same) {
        EXPECT_TRUE(look_up(first, one).is_same_file(look_up(second, other))) << one << other;
    }
    for (const auto &[one, other] : others) {
        EXPECT_FALSE(look_up(first, one).is_same_file(look_up(second, other))) << one << other;
    }
}

TEST_F(Destinations, RegularFileIsKnownByItsIdentity) {
    write_file("a", "");
    const int descriptor = ::open("a", O_RDONLY | O_CLOEXEC);
    const auto identity = regular_file(descriptor);
    ::close(descriptor);
    ASSERT_TRUE(identity.has_value());
    EXPECT_TRUE(look_up(destination_, "a").is_file(*identity));
    EXPECT_FALSE(look_up(destination_, "new").is_file(*identity));
    EXPECT_FALSE(look_up(destination_, "/dev/null").is_file(*identity));
}

TEST_F(Destinations, WhatCannotBeLookedUpIsRefused) {
    fs::create_directory("locked");
    fs::create_symlink("x", "locked/link");
    ASSERT_EQ(::chmod(".", 0755), 0);
    ASSERT_EQ(::chmod("locked", 0), 0);
    const uid_t user = ::geteuid();
    ASSERT_EQ(::seteuid(user == 0 ? kNobody : user), 0);
    const bool found = destination_.look_up("locked/out", OldFile::kRewritten);
    ASSERT_EQ(::seteuid(user), 0);
    ASSERT_EQ(::chmod("locked", 0755), 0);
    EXPECT_FALSE(found);
}

// ---- New files and old ones

TEST_F(Destinations, NewFileAppearsWhenItIsPublished) {
    for (const OldFile old_file : kBoth) {
        ASSERT_TRUE(begin("out", old_file, "text"));
        EXPECT_FALSE(is_there("out"));
        ASSERT_TRUE(destination_.publish());
        EXPECT_EQ(read_text("out"), "text");
        EXPECT_EQ(names(), "out ");
        fs::remove("out");
    }
}

TEST_F(Destinations, OldFileStaysWholeUntilThen) {
    for (const OldFile old_file : kBoth) {
        write_file("out", "old text");
        ASSERT_TRUE(begin("out", old_file, "text"));
        EXPECT_EQ(read_text("out"), "old text");
        ASSERT_TRUE(destination_.publish());
        EXPECT_EQ(read_text("out"), "text");
    }
    EXPECT_EQ(names(), "out ");
}

TEST_F(Destinations, RewrittenFileKeepsItsModeAndAReplacedOneDoesNot) {
    const mode_t before = ::umask(022);
    for (const mode_t mode : {0600U, 0640U, 0755U, 0666U, 04711U}) {
        write_file("out", "old");
        ASSERT_EQ(::chmod("out", mode), 0);
        ASSERT_TRUE(write_output("out", OldFile::kRewritten, "text"));
        EXPECT_EQ(mode_of("out"), mode);
        ASSERT_TRUE(write_output("out", OldFile::kReplaced, "text"));
        EXPECT_EQ(mode_of("out"), 0644U);
    }
    ::umask(before);
}

TEST_F(Destinations, RewrittenFileKeepsItsOwner) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "Only root can give files away.";
    }
    write_file("out", "old");
    ASSERT_EQ(::chown("out", kNobody, kNobody), 0);
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    EXPECT_EQ(read_text("out"), "old");
    ASSERT_TRUE(destination_.publish());
    struct stat status {};
    ASSERT_EQ(stat("out", &status), 0);
    EXPECT_EQ(status.st_uid, kNobody);
    EXPECT_EQ(status.st_gid, kNobody);
    EXPECT_EQ(read_text("out"), "text");
}

TEST_F(Destinations, RewrittenFileKeepsItsOtherNames) {
    write_file("out", "old text");
    fs::create_hard_link("out", "other");
    ASSERT_TRUE(write_output("out", OldFile::kRewritten, "text"));
    EXPECT_EQ(read_text("other"), "text");
    ASSERT_TRUE(write_output("out", OldFile::kReplaced, "new"));
    EXPECT_EQ(read_text("other"), "text");
    EXPECT_EQ(read_text("out"), "new");
}

TEST_F(Destinations, LinkIsFollowedToRewriteAndReplacedOtherwise) {
    fs::create_directory("sub");
    write_file("sub/target", "old");
    fs::create_symlink("sub/target", "near");
    fs::create_symlink("near", "out");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    EXPECT_EQ(std::distance(fs::directory_iterator("sub"), {}), 2); // beside the target
    ASSERT_TRUE(destination_.publish());
    EXPECT_TRUE(is_link("out"));
    EXPECT_EQ(read_text("sub/target"), "text");
    ASSERT_TRUE(write_output("out", OldFile::kReplaced, "new"));
    EXPECT_FALSE(is_link("out"));
    EXPECT_EQ(read_text("out"), "new");
    EXPECT_EQ(read_text("sub/target"), "text");
}

TEST_F(Destinations, LinkToAMissingFileIsFollowedToRewriteAndReplacedOtherwise) {
    fs::create_symlink("target", "out");
    ASSERT_TRUE(write_output("out", OldFile::kRewritten, "text"));
    EXPECT_TRUE(is_link("out"));
    EXPECT_EQ(read_text("target"), "text");
    fs::remove("target");
    ASSERT_TRUE(write_output("out", OldFile::kReplaced, "new"));
    EXPECT_FALSE(is_link("out"));
    EXPECT_EQ(names(), "out ");
}

TEST_F(Destinations, LinkToADirectoryIsReplacedOnly) {
    fs::create_directory("sub");
    fs::create_symlink("sub", "out");
    EXPECT_FALSE(write_output("out", OldFile::kRewritten, "text"));
    EXPECT_TRUE(write_output("out", OldFile::kReplaced, "text"));
    EXPECT_EQ(read_text("out"), "text");
    EXPECT_EQ(names(), "out sub ");
}

TEST_F(Destinations, DirectoryCannotBeWritten) {
    fs::create_directory("out");
    for (const OldFile old_file : kBoth) {
        EXPECT_FALSE(write_output("out", old_file, "text"));
        EXPECT_FALSE(write_output("out/", old_file, "text"));
        EXPECT_FALSE(write_output("out/.", old_file, "text"));
        EXPECT_FALSE(write_output("", old_file, "text"));
        EXPECT_FALSE(write_output("missing/", old_file, "text"));
        EXPECT_FALSE(write_output("missing/out", old_file, "text"));
    }
    EXPECT_EQ(names(), "out ");
}

TEST_F(Destinations, NameMayBeAsLongAsTheSystemAllows) {
    const std::string longest(255, 'n');
    for (const OldFile old_file : kBoth) {
        ASSERT_TRUE(write_output(longest, old_file, "text"));
        EXPECT_EQ(read_text(longest), "text");
        EXPECT_FALSE(write_output(longest + "n", old_file, "text"));
        EXPECT_EQ(names(), longest + " ");
        fs::remove(longest);
    }
}

TEST_F(Destinations, FileThatMustNotBeWrittenIsNotRewritten) {
    write_file("out", "old");
    ASSERT_EQ(::chmod("out", 0444), 0);
    ASSERT_EQ(::chmod(".", 0777), 0);
    const uid_t user = ::geteuid();
    ASSERT_EQ(::seteuid(user == 0 ? kNobody : user), 0);
    const bool written = write_output("out", OldFile::kRewritten, "text");
    ASSERT_EQ(::seteuid(user), 0);
    EXPECT_FALSE(written);
    EXPECT_EQ(read_text("out"), "old");
    EXPECT_EQ(names(), "out ");
}

// ---- Where no temporary file can be made

class LockedDirectory : public Destinations {
  protected:
    void SetUp() override {
        Destinations::SetUp();
        fs::create_directory("locked");
        write_file("locked/out", "old text");
        ASSERT_EQ(::chmod("locked/out", 0666), 0);
        ASSERT_EQ(::chmod("locked", 0555), 0);
        ASSERT_EQ(::chmod(".", 0755), 0);
        user_ = ::geteuid();
        ASSERT_EQ(::seteuid(user_ == 0 ? kNobody : user_), 0);
    }

    void TearDown() override {
        ASSERT_EQ(::seteuid(user_), 0);
        ASSERT_EQ(::chmod("locked", 0755), 0);
        Destinations::TearDown();
    }

    uid_t user_ = 0;
};

TEST_F(LockedDirectory, FileIsWrittenWhereItIs) {
    for (const OldFile old_file : kBoth) {
        ASSERT_TRUE(write_output("locked/out", old_file, "text"));
        EXPECT_EQ(read_text("locked/out"), "text");
        EXPECT_EQ(mode_of("locked/out"), 0666U);
    }
}

TEST_F(LockedDirectory, FileThatCannotBeDeletedIsEmptied) {
    ASSERT_TRUE(begin("locked/out", OldFile::kRewritten, "text"));
    destination_.withdraw();
    EXPECT_EQ(read_text("locked/out"), "");
}

TEST_F(LockedDirectory, NewFileCannotBeCreated) {
    for (const OldFile old_file : kBoth) {
        EXPECT_FALSE(write_output("locked/new", old_file, "text"));
    }
}

// ---- Devices, pipes and descriptors

TEST_F(Destinations, PipeIsWrittenAndStays) {
    for (const OldFile old_file : kBoth) {
        ASSERT_EQ(::mkfifo("pipe", 0666), 0);
        fs::create_symlink("pipe", "out");
        std::string arrived;
        std::thread reader([&] { arrived = read_text("pipe"); });
        EXPECT_TRUE(begin("out", old_file, "text"));
        reader.join();
        EXPECT_EQ(arrived, "text");
        destination_.withdraw();
        EXPECT_EQ(names(), "out pipe ");
        EXPECT_TRUE(is_link("out"));
        fs::remove("pipe");
        fs::remove("out");
    }
}

TEST_F(Destinations, DeviceIsWrittenAndStays) {
    // A null device of the test's own, so that a fault cannot cost the machine its real one.
    if (::mknod("null", S_IFCHR | 0666, makedev(1, 3)) != 0) {
        GTEST_SKIP() << "Devices can be made by root only.";
    }
    fs::create_symlink("null", "link");
    for (const OldFile old_file : kBoth) {
        for (const char *name : {"null", "link"}) {
            EXPECT_TRUE(write_output(name, old_file, "text"));
            destination_.withdraw();
            EXPECT_EQ(names(), "link null ");
            EXPECT_TRUE(fs::is_character_file("null"));
            EXPECT_TRUE(is_link("link"));
        }
    }
}

// The owner of the descriptor goes on with the same file.
TEST_F(Destinations, FileBehindADescriptorIsWrittenWhereItIs) {
    for (const OldFile old_file : kBoth) {
        write_file("file", "a longer old text");
        const int descriptor = ::open("file", O_RDWR | O_CLOEXEC);
        ASSERT_GE(descriptor, 0);
        const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
        fs::create_symlink(path, "out");
        ASSERT_TRUE(write_output("out", old_file, "text"));
        struct stat status {};
        ASSERT_EQ(fstat(descriptor, &status), 0);
        EXPECT_EQ(status.st_nlink, 1U);
        EXPECT_EQ(status.st_size, 4);
        EXPECT_TRUE(is_link("out"));
        destination_.withdraw();
        EXPECT_EQ(read_text("file"), "");
        EXPECT_EQ(names(), "file out ");
        ::close(descriptor);
        fs::remove("out");
    }
}

// ---- What is withdrawn

TEST_F(Destinations, WithdrawnOutputIsGoneAndSoIsTheOldFile) {
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    destination_.withdraw();
    EXPECT_EQ(names(), "");
    write_file("out", "old");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    destination_.withdraw();
    EXPECT_EQ(names(), "");
}

// Where no temporary file can be created, the new file is there from the beginning.
TEST_F(Destinations, WithdrawnOutputIsGoneWhereItWasWrittenInItsPlace) {
    write_file("out", "old");
    calls.open = [](const char *path, int flags, mode_t mode) {
        if ((flags & O_EXCL) != 0) {
            errno = EACCES;
            return -1;
        }
        return real_calls.open(path, flags, mode);
    };
    EXPECT_TRUE(begin("out", OldFile::kReplaced, "text"));
    calls = real_calls;
    EXPECT_FALSE(destination_.is_beside());
    EXPECT_EQ(read_text("out"), "text");
    destination_.withdraw();
    EXPECT_FALSE(is_there("out"));
}

TEST_F(Destinations, WithdrawnFileWithFurtherNamesLosesOne) {
    write_file("out", "old");
    fs::create_hard_link("out", "other");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    destination_.withdraw();
    EXPECT_EQ(names(), "other ");
}

TEST_F(Destinations, WithdrawnLinkIsGoneAndItsFileEmpty) {
    write_file("target", "old");
    fs::create_symlink("target", "out");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    destination_.withdraw();
    EXPECT_EQ(names(), "target ");
    EXPECT_EQ(read_text("target"), "");
}

TEST_F(Destinations, WithdrawnLinkToAMissingFileIsGone) {
    fs::create_symlink("target", "out");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    destination_.withdraw();
    EXPECT_EQ(names(), "");
}

TEST_F(Destinations, FileThatSomebodyElsePutThereMeanwhileStays) {
    write_file("out", "old");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    write_file("theirs", "theirs");
    fs::rename("theirs", "out");
    destination_.withdraw();
    EXPECT_EQ(read_text("out"), "theirs");
    fs::remove("out");
    ASSERT_TRUE(begin("out", OldFile::kRewritten, "text"));
    write_file("out", "theirs");
    destination_.withdraw();
    EXPECT_EQ(names(), "out ");
}

} // namespace
