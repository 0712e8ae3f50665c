// Path and file-name utilities.
#include "util/path.h"

#include "tests/unit/support.h"

#include <algorithm>
#include <filesystem>
#include <string>

namespace {

std::string without_extension(std::string name) {
    RemoveExtension(name);
    return name;
}

std::string directory_of(const char *path) {
    std::string part = "old";
    PathFromPathName(part, path);
    return part;
}

std::string absolute(const char *path) {
    std::string result = "old";
    makePathAbsoluteUX(result, path);
    return result;
}

std::string backslashed(std::string path) {
    std::string result = "old";
    winfilename(result, path);
    return result;
}

// Makes and enters nested directories until the working directory's path has that length.
void enter_directory_of_length(std::size_t length) {
    std::string path = std::filesystem::current_path().string();
    ASSERT_LT(path.size() + 2, length);
    while (path.size() < length) {
        std::size_t step = std::min<std::size_t>(length - path.size() - 1, 200);
        if (length - path.size() - 1 - step == 1) {
            --step; // leaves room for a separator and a name
        }
        const std::string name(step, 'd');
        std::filesystem::create_directory(name);
        std::filesystem::current_path(name);
        path += "/" + name;
    }
    ASSERT_EQ(std::filesystem::current_path().string().size(), length);
}

// ---- The working directory ----

class WorkingDirectory : public RunTest {};

TEST_F(WorkingDirectory, IsTold) { EXPECT_EQ(getMyDirectory(), directory); }

TEST_F(WorkingDirectory, IsToldUpTo511Bytes) {
    enter_directory_of_length(510);
    EXPECT_EQ(getMyDirectory().size(), 510U);
    std::filesystem::current_path(directory);
    enter_directory_of_length(511);
    EXPECT_EQ(getMyDirectory(), std::filesystem::current_path().string());
    std::filesystem::current_path(directory);
    enter_directory_of_length(512);
    EXPECT_EQ(getMyDirectory(), "");
}

TEST_F(WorkingDirectory, ThatIsTooLongLeavesRelativePathsAtTheRoot) {
    enter_directory_of_length(512);
    EXPECT_EQ(absolute("a.szirpa"), "/a.szirpa");
}

TEST_F(WorkingDirectory, ThatIsGoneIsEmpty) {
    std::filesystem::create_directory("gone");
    std::filesystem::current_path("gone");
    std::filesystem::remove(directory + "/gone");
    EXPECT_EQ(getMyDirectory(), "");
}

// ---- Parts of paths ----

TEST(PathHasRoot, NeedsALeadingSlash) {
    EXPECT_TRUE(PathHasRoot("/"));
    EXPECT_TRUE(PathHasRoot("/a"));
    EXPECT_FALSE(PathHasRoot("a/b"));
    EXPECT_FALSE(PathHasRoot("\\a"));
    EXPECT_FALSE(PathHasRoot("C:/a"));
    EXPECT_FALSE(PathHasRoot(""));
    EXPECT_FALSE(PathHasRoot(nullptr));
}

TEST(StringHasPath, FindsTheLastSeparatorOfEitherKind) {
    const char *slash_last = "a\\b/c";
    EXPECT_EQ(StringHasPath(slash_last), slash_last + 3);
    const char *backslash_last = "a/b\\c";
    EXPECT_EQ(StringHasPath(backslash_last), backslash_last + 3);
    const char *first = "/abc";
    EXPECT_EQ(StringHasPath(first), first);
    const char *end = "a/";
    EXPECT_EQ(StringHasPath(end), end + 1);
}

TEST(StringHasPath, GivesNoneWithoutASeparator) {
    EXPECT_EQ(StringHasPath("abc"), nullptr);
    EXPECT_EQ(StringHasPath(""), nullptr);
    EXPECT_EQ(StringHasPath(nullptr), nullptr);
}

TEST(FilenameFromPath, IsThePartBehindTheLastSeparator) {
    EXPECT_STREQ(FilenameFromPath("a\\b/c"), "c");
    EXPECT_STREQ(FilenameFromPath("a/b\\c"), "c");
    EXPECT_STREQ(FilenameFromPath("/c"), "c");
    EXPECT_STREQ(FilenameFromPath("a/"), "");
}

TEST(FilenameFromPath, IsTheWholeStringWithoutASeparator) {
    const char *name = "abc";
    EXPECT_EQ(FilenameFromPath(name), name);
}

TEST(FilenameFromPath, GivesNoneForNone) { EXPECT_EQ(FilenameFromPath(nullptr), nullptr); }

TEST(PathFromPathName, IsTheTextBeforeTheLastSeparator) {
    EXPECT_EQ(directory_of("/a/b"), "/a");
    EXPECT_EQ(directory_of("a\\b/c"), "a\\b");
    EXPECT_EQ(directory_of("a/b\\c"), "a/b");
    EXPECT_EQ(directory_of("a/b/"), "a/b");
    EXPECT_EQ(directory_of("a/b"), "a");
}

TEST(PathFromPathName, FindsASeparatorFromTheSecondCharacterOn) {
    EXPECT_EQ(directory_of("//x"), "/");
    EXPECT_EQ(directory_of("/x"), "");
    EXPECT_EQ(directory_of("\\x"), "");
}

TEST(PathFromPathName, IsEmptyWithoutASeparator) {
    EXPECT_EQ(directory_of("x"), "");
    EXPECT_EQ(directory_of(""), "");
}

TEST(RemoveExtension, CutsAtTheLastPoint) {
    EXPECT_EQ(without_extension("prog.szirpa"), "prog");
    EXPECT_EQ(without_extension("a.b.c"), "a.b");
    EXPECT_EQ(without_extension("a."), "a");
    EXPECT_EQ(without_extension("a.b"), "a");
    EXPECT_EQ(without_extension("prog"), "prog");
    EXPECT_EQ(without_extension(""), "");
}

TEST(RemoveExtension, KeepsALeadingPoint) {
    EXPECT_EQ(without_extension(".hidden"), ".hidden");
    EXPECT_EQ(without_extension("."), ".");
    EXPECT_EQ(without_extension(".hidden.x"), ".hidden");
}

TEST(RemoveExtension, CutsAtAPointInADirectoryName) {
    EXPECT_EQ(without_extension("dir.old/prog"), "dir");
    EXPECT_EQ(without_extension("./prog"), "./prog");
    EXPECT_EQ(without_extension("../prog"), ".");
}

// ---- Canonical paths ----

TEST(Winfilename, TurnsEverySeparatorIntoABackslash) {
    EXPECT_EQ(backslashed("/a/b\\c"), "\\a\\b\\c");
    EXPECT_EQ(backslashed(""), "");
}

TEST(Winfilename, DropsTheSecondSlashOfEveryPair) {
    EXPECT_EQ(backslashed("a//b"), "a\\b");
    EXPECT_EQ(backslashed("a/\\b"), "a\\b");
    EXPECT_EQ(backslashed("a///b"), "a\\\\b");
    EXPECT_EQ(backslashed("a////b"), "a\\\\b");
    EXPECT_EQ(backslashed("a/////b"), "a\\\\\\b");
    EXPECT_EQ(backslashed("//a//b"), "\\a\\b");
}

TEST(Winfilename, TurnsTheSourcesBackslashesIntoSlashes) {
    std::string source = "a\\b//c";
    std::string result;
    winfilename(result, source);
    EXPECT_EQ(source, "a/b//c");
    EXPECT_EQ(result, "a\\b\\c");
}

TEST(PathCanonicalize, AnEmptyPathIsTheRoot) {
    EXPECT_EQ(PathCanonicalizeA(""), "\\");
    EXPECT_EQ(PathCanonicalizeA("\\"), "\\");
}

TEST(PathCanonicalize, KeepsADrive) {
    EXPECT_EQ(PathCanonicalizeA("C:"), "C:\\");
    EXPECT_EQ(PathCanonicalizeA("C:\\"), "C:\\");
    EXPECT_EQ(PathCanonicalizeA("c:\\a"), "c:\\a");
    EXPECT_EQ(PathCanonicalizeA("C:\\a\\..\\b"), "C:\\b");
    EXPECT_EQ(PathCanonicalizeA("C:\\..\\b"), "C:\\b");
}

TEST(PathCanonicalize, DropsSinglePoints) {
    EXPECT_EQ(PathCanonicalizeA("\\a\\.\\b"), "\\a\\b");
    EXPECT_EQ(PathCanonicalizeA("\\.\\.\\b"), "\\b");
    EXPECT_EQ(PathCanonicalizeA(".\\a"), "a");
}

TEST(PathCanonicalize, KeepsPointsInsideNames) {
    EXPECT_EQ(PathCanonicalizeA("\\a.b\\c"), "\\a.b\\c");
    EXPECT_EQ(PathCanonicalizeA("\\a.\\c"), "\\a.\\c");
    EXPECT_EQ(PathCanonicalizeA("\\a\\.b\\c"), "\\a\\.b\\c");
    EXPECT_EQ(PathCanonicalizeA("\\a..b\\c"), "\\a..b\\c");
    EXPECT_EQ(PathCanonicalizeA("\\a..\\c"), "\\a..\\c");
}

TEST(PathCanonicalize, DoublePointsRemoveTheComponentBefore) {
    EXPECT_EQ(PathCanonicalizeA("\\a\\..\\b"), "\\b");
    EXPECT_EQ(PathCanonicalizeA("ab\\..\\c"), "c");
    EXPECT_EQ(PathCanonicalizeA("\\a\\b\\.."), "\\a\\");
    EXPECT_EQ(PathCanonicalizeA("\\a\\b\\..\\c"), "\\a\\c");
    EXPECT_EQ(PathCanonicalizeA("\\a\\b\\..\\..\\c"), "\\c");
    EXPECT_EQ(PathCanonicalizeA("\\a.b\\..\\c"), "\\c");
}

TEST(PathCanonicalize, DoublePointsNeverClimbAboveTheRoot) {
    EXPECT_EQ(PathCanonicalizeA("\\..\\a"), "\\a");
    EXPECT_EQ(PathCanonicalizeA("\\a\\..\\..\\b"), "\\b");
    EXPECT_EQ(PathCanonicalizeA("\\..\\..\\.\\..\\a"), "\\a");
}

TEST(PathCanonicalize, DoublePointsNeverClimbAboveAServersShare) {
    EXPECT_EQ(PathCanonicalizeA("\\\\server\\share\\a\\..\\x"), "\\\\server\\share\\x");
    EXPECT_EQ(PathCanonicalizeA("\\\\server\\share\\..\\x"), "\\\\server\\share\\x");
    EXPECT_EQ(PathCanonicalizeA("\\\\server"), "\\\\server");
}

TEST(MakePathAbsolute, ResolvesARootedPath) {
    EXPECT_EQ(absolute("/home/u/src/../inc/./x.szirpa"), "/home/u/inc/x.szirpa");
    EXPECT_EQ(absolute("/a\\b/../c"), "/a/c");
    EXPECT_EQ(absolute("/"), "/");
}

TEST_F(WorkingDirectory, IsJoinedToRelativePaths) {
    EXPECT_EQ(absolute("a.szirpa"), directory + "/a.szirpa");
    EXPECT_EQ(absolute("lib/../a.szirpa"), directory + "/a.szirpa");
    EXPECT_EQ(absolute("a//b"), directory + "/a/b");
    EXPECT_EQ(absolute("./a"), directory + "/a");
    EXPECT_EQ(absolute("lib\\a"), directory + "/lib/a");
    EXPECT_EQ(absolute("../a"), std::filesystem::path(directory).parent_path().string() + "/a");
}

TEST_F(WorkingDirectory, IsJoinedToPathsThatBeginWithABackslash) {
    EXPECT_EQ(absolute("\\a"), directory + "/a");
}

// ---- File-name operands ----

TEST(CopyFname, KeepsBlanksBetweenQuotes) {
    std::string name = "old";
    const char *text = "\"my file.inc\" ; comment";
    EXPECT_EQ(copyFname(name, text), text + 13);
    EXPECT_EQ(name, "my file.inc");
}

TEST(CopyFname, WithoutAClosingQuoteTakesTheRest) {
    std::string name;
    const char *text = "\"my;file";
    EXPECT_EQ(copyFname(name, text), text + 8);
    EXPECT_EQ(name, "my;file");
}

TEST(CopyFname, EmptyQuotesGiveAnEmptyName) {
    std::string name = "old";
    const char *text = "\"\"x";
    EXPECT_EQ(copyFname(name, text), text + 2);
    EXPECT_EQ(name, "");
}

TEST(CopyFname, EndsAtASemicolonOrABlank) {
    std::string name;
    const char *semicolon = "file.inc;x";
    EXPECT_EQ(copyFname(name, semicolon), semicolon + 8);
    EXPECT_EQ(name, "file.inc");
    for (const char *text : {"f,\"g x", "f,\"g\tx", "f,\"g\n"}) {
        EXPECT_EQ(copyFname(name, text), text + 4);
        EXPECT_EQ(name, "f,\"g");
    }
}

TEST(CopyFname, GivesNoneAtTheEndOfTheText) {
    std::string name = "old";
    EXPECT_EQ(copyFname(name, "file.inc"), nullptr);
    EXPECT_EQ(name, "file.inc");
}

TEST(CopyFname, GivesAnEmptyNameAndNoneWithoutAName) {
    for (const char *text : {"", ";x", " x", "\tx", "\n"}) {
        std::string name = "old";
        EXPECT_EQ(copyFname(name, text), nullptr);
        EXPECT_EQ(name, "");
    }
}

TEST(CopyFname, BytesFrom128UpEndAnUnquotedName) {
    std::string name;
    const char *text = "f\xE9.inc";
    EXPECT_EQ(copyFname(name, text), text + 1);
    EXPECT_EQ(name, "f");
    EXPECT_EQ(copyFname(name, "\xE9.inc"), nullptr);
    EXPECT_EQ(name, "");
}

} // namespace
