// Descriptors: the standard ones, identities, whole writes.
#include "util/descriptor.h"

#include "tests/unit/support.h"

#include <filesystem>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Descriptors : public RunTest {
  protected:
    // The status with which a child process ends that makes this call.
    template <typename Call> static int status_of_child(Call call) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(call() ? 0 : 1);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return status;
    }
};

bool is_null_device_for_reading(int descriptor) {
    struct stat status {};
    struct stat null {};
    return fstat(descriptor, &status) == 0 && stat("/dev/null", &null) == 0 &&
           status.st_rdev == null.st_rdev && S_ISCHR(status.st_mode) &&
           (::fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY;
}

TEST_F(Descriptors, ClosedStandardOnesAreFilledWithTheNullDevice) {
    for (unsigned closed = 0; closed < 8; ++closed) {
        EXPECT_EQ(status_of_child([=] {
                      for (int i = 0; i < 3; ++i) {
                          if ((closed >> i & 1U) != 0) {
                              ::close(i);
                          }
                      }
                      const int first_free = closed == 0 ? ::dup(2) : 3;
                      if (closed == 0) {
                          ::close(first_free);
                      }
                      fill_standard_descriptors();
                      bool right = true;
                      for (int i = 0; i < 3; ++i) {
                          if ((closed >> i & 1U) != 0) {
                              right = right && is_null_device_for_reading(i);
                          }
                      }
                      return right && (closed != 0 || ::fcntl(first_free, F_GETFD) < 0);
                  }),
                  0)
            << closed;
    }
}

TEST_F(Descriptors, WriteToAFilledOneFails) {
    EXPECT_EQ(status_of_child([] {
                  ::close(STDOUT_FILENO);
                  fill_standard_descriptors();
                  return !write_fully(STDOUT_FILENO, "x");
              }),
              0);
}

TEST_F(Descriptors, RegularFileIsKnownByEachOfItsNames) {
    write_file("a", "text");
    std::filesystem::create_hard_link("a", "b");
    write_file("c", "text");
    const int a = ::open("a", O_RDONLY | O_CLOEXEC);
    const int b = ::open("b", O_RDONLY | O_CLOEXEC);
    const int c = ::open("c", O_RDONLY | O_CLOEXEC);
    EXPECT_TRUE(regular_file(a).has_value());
    EXPECT_EQ(regular_file(a), regular_file(b));
    EXPECT_NE(regular_file(a), regular_file(c));
    for (const int descriptor : {a, b, c}) {
        ::close(descriptor);
    }
}

TEST_F(Descriptors, NoRegularFileIsBehindADeviceADirectoryOrAClosedOne) {
    for (const char *name : {"/dev/null", "."}) {
        const int descriptor = ::open(name, O_RDONLY | O_CLOEXEC);
        ASSERT_GE(descriptor, 0);
        EXPECT_FALSE(regular_file(descriptor).has_value()) << name;
        ::close(descriptor);
    }
    EXPECT_FALSE(regular_file(-1).has_value());
}

TEST_F(Descriptors, ASingleByteIsWritten) {
    const int file = ::open("one", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    EXPECT_TRUE(write_fully(file, "x"));
    ::close(file);
    EXPECT_EQ(read_text("one"), "x");
}

TEST_F(Descriptors, WriteThatFailsIsReported) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    EXPECT_FALSE(write_fully(full, "x"));
    EXPECT_TRUE(write_fully(full, ""));
    ::close(full);
}

TEST_F(Descriptors, GuardClosesItsDescriptor) {
    const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    { const DescriptorGuard guard(descriptor); }
    EXPECT_LT(::fcntl(descriptor, F_GETFD), 0);
}

} // namespace
