// The commands of zirpa: what the command line has asked for, and what each makes of it. Each
// returns the exit status: 0 when all is well, 1 after errors, 2 when a file could not be used.
#pragma once

#include "zirpa/inspection.h"

#include <string>
#include <vector>

// The name that stands for standard input.
inline constexpr const char *kStandardInput = "-";
// What a source from standard input is called, unless it gets another name.
inline constexpr const char *kStandardInputName = "stdin.szirpa";

enum class Format { kText, kJson, kSarif };
enum class Colour { kAuto, kAlways, kNever };

// What all commands that assemble have in common.
struct Request {
    std::vector<std::string> options; // of the assembler
    WarningChoice warnings;
    Format format = Format::kText;
    Colour colour = Colour::kAuto;
    bool is_quiet = false; // errors alone, without a summary
    std::string stdin_name = kStandardInputName;
};

struct BuildRequest {
    Request common;
    std::string source;
    std::string depfile;
    bool to_stdout = false; // the S-records, and no other output
};

struct MapRequest {
    Request common;
    std::string source;
    std::string svg; // a file for the picture; empty: a picture in the terminal
};

int map(const MapRequest &request);

int build(const BuildRequest &request);

// What asks for all chapters, as a page.
inline constexpr const char *kExplainAll = "all";

// The chapter on an identifier; the list of identifiers for none.
int explain(const std::string &id);

int check(const Request &request, const std::vector<std::string> &sources);

// The language server; 1 where its client has gone without the end that the protocol has.
int serve();
