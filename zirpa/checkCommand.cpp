#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/formats.h"

#include <algorithm>

namespace {

bool tell(const Request &request, const std::vector<FileReport> &reports) {
    switch (request.format) {
    case Format::kJson: return print(json_of(reports));
    case Format::kSarif: return print(sarif_of(reports));
    default: return show(request, reports);
    }
}

} // namespace

int check(const Request &request, const std::vector<std::string> &sources) {
    std::vector<FileReport> reports;
    int status = 0;
    for (const std::string &source : sources) {
        Inspection inspection = assemble(request, source, door::Outputs::kNowhere);
        status = std::max(status, inspection.status());
        reports.push_back(
            {inspection.file, inspection.status(), std::move(inspection.diagnostics)});
    }
    return tell(request, reports) ? status : kUnusable;
}
