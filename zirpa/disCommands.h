// The commands on programs without a source: back to one, and two of them compared.
#pragma once

#include "dis/hints.h"
#include "dis/reading.h"
#include "zirpa/commands.h"

#include <CLI/App.hpp>

#include <optional>
#include <string>
#include <vector>

// How programs are read, and what is known of them.
struct ProgramRequest {
    Request common; // colours
    std::optional<dis::InputFormat> format;
    std::optional<std::uint32_t> base;     // also says that bytes have no format
    dis::Hints hints;                      // from the command line
    std::vector<std::string> hint_files;   // read before those
    std::vector<std::string> symbol_files; // symbol tables
    std::vector<std::string> debug_files;  // S-records with debug records
};

struct DisRequest {
    ProgramRequest reading;
    std::string file;
    std::string output; // empty: standard output
    std::string hints_output;
    std::string graph_output;
    bool has_bytes = false;
    bool has_references = false;
    bool is_verified = false;
};

struct DiffRequest {
    ProgramRequest reading;
    std::string first;
    std::string second;
};

int disassemble(const DisRequest &request);

// 0: the same bytes at the same addresses; 1: others.
int diff(const DiffRequest &request);

// Adds the command to the command line; it fills in its status.
void add_dis(CLI::App &app, DisRequest &request, int &status);
void add_diff(CLI::App &app, DiffRequest &request, int &status);
