// The commands on sources: assembled, checked, or drawn.
#pragma once

#include "zirpa/commands.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

// What the options of these commands are read into.
struct SourceWords {
    BuildRequest build;
    MapRequest map;
    std::vector<std::string> sources;
    std::vector<std::string> allowed;
    std::vector<std::string> denied;
    std::vector<std::string> wanted;

    Request &common() { return build.common; }
};

// Adds the command to the command line; it fills in its status.
void add_build(CLI::App &app, SourceWords &words, int &status);
void add_check(CLI::App &app, SourceWords &words, int &status);
void add_map(CLI::App &app, SourceWords &words, int &status);
