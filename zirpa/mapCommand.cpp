#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/memoryMap.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

int map(const MapRequest &request) {
    MemoryMap memory;
    door::Listener also;
    also.line = [&](const door::Line &line) { memory.take(line); };
    also.definition = [&](const door::Definition &definition) { memory.take(definition); };
    Inspection inspection = assemble(request.common, request.source, door::Outputs::kNowhere, also);
    int status = inspection.status();
    bool is_shown =
        show(request.common, {{inspection.file, status, std::move(inspection.diagnostics)}});
    if (!inspection.result.has_run) {
        return is_shown ? status : kUnusable;
    }
    if (request.svg.empty()) {
        is_shown =
            print(picture_of(memory, inspection.file, is_coloured(request.common.colour, true))) &&
            is_shown;
    } else if (!write_file(request.svg, svg_of(memory, inspection.file))) {
        (void)complain(request.svg + ": error: can't be written: " + std::strerror(errno) + "\n");
        is_shown = false;
    }
    return is_shown ? status : kUnusable;
}
