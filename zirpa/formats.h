// Diagnostics as text for people, and as JSON and SARIF for programs. All three say the same.
#pragma once

#include "zirpa/diagnostic.h"

#include <string>
#include <vector>

// What has been found in one source.
struct FileReport {
    std::string file;
    int status = 0;
    std::vector<Diagnostic> diagnostics;
};

// Every diagnostic as a compiler shows it: place and message, then the line with carets.
std::string text_of(const std::vector<Diagnostic> &diagnostics, bool is_coloured);

// "1 error, 2 warnings", or nothing.
std::string summary_of(std::size_t errors, std::size_t warnings);

// By the schema of zirpa/diagnostics.schema.json.
std::string json_of(const std::vector<FileReport> &reports);

// SARIF 2.1.0. A rule leads to its chapter.
std::string sarif_of(const std::vector<FileReport> &reports);
