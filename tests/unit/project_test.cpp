// zirpa.json: what it may say, and in which order it counts.
#include "zirpa/project.h"

#include <gtest/gtest.h>

namespace {

Project read(const char *text) {
    Project project;
    const auto failure = read_project(text, project);
    EXPECT_EQ(failure, std::nullopt);
    return project;
}

std::string failure_of(const char *text) {
    Project project;
    return read_project(text, project).value_or("");
}

TEST(Project, WordsComeAheadOfNames) {
    const Project project =
        read(R"({"define": ["A", "B"], "compatibility": ["nocase"], "include": ["d"]})");
    EXPECT_EQ(project.options,
              (std::vector<std::string>{"-C", "nocase", "-I", "d", "-D", "A", "-D", "B"}));
}

TEST(Project, WarningsAreChosen) {
    const Project project = read(
        R"({"allow": ["unlike-c"], "deny": ["all", "phase-error"], "warn": ["unused-label"],
            "strict": true, "$schema": "x"})");
    EXPECT_TRUE(project.warnings.allowed.contains("unlike-c"));
    EXPECT_TRUE(project.warnings.denied.contains("phase-error"));
    EXPECT_TRUE(project.warnings.wanted.contains("unused-label"));
    EXPECT_TRUE(project.warnings.all_denied);
    EXPECT_TRUE(project.warnings.is_strict);
}

TEST(Project, WhatIsWrongIsTold) {
    EXPECT_EQ(failure_of("{"), "it is no JSON");
    EXPECT_EQ(failure_of("[]"), "it holds no object");
    EXPECT_EQ(failure_of(R"({"defin": []})"), "there is no setting defin: did you mean define?");
    EXPECT_EQ(failure_of(R"({"xyzzy": []})"), "there is no setting xyzzy");
    EXPECT_EQ(failure_of(R"({"define": [""]})"), "define: a name has no letters");
    EXPECT_EQ(failure_of(R"({"deny": 7})"), "deny is no list");
    EXPECT_EQ(failure_of(R"({"include": ["lib", 1]})"), "include has something that is no text");
    EXPECT_EQ(failure_of(R"({"allow": ["all"]})"), "allow: no diagnostic is called all");
}

TEST(Project, TheFileIsBesideTheSource) {
    EXPECT_EQ(project_file_of("a.szirpa"), "zirpa.json");
    EXPECT_EQ(project_file_of("/x/y/a.szirpa"), "/x/y/zirpa.json");
    EXPECT_EQ(project_file_of("/a.szirpa"), "/zirpa.json");
}

TEST(Project, AnotherIsAdded) {
    Project project = read(R"({"define": ["A"], "allow": ["unlike-c"]})");
    project.add(read(R"({"define": ["B"], "strict": true})"));
    EXPECT_EQ(project.options, (std::vector<std::string>{"-D", "A", "-D", "B"}));
    EXPECT_TRUE(project.warnings.is_strict);
    EXPECT_TRUE(project.warnings.allowed.contains("unlike-c"));
}

} // namespace
