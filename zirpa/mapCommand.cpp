#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/memoryMap.h"

namespace {

void write_svg(Inspection &inspection, const std::string &name, const MemoryMap &memory) {
    if (const auto failure =
            door::write_file(name, svg_of(memory, inspection.file), {inspection.file})) {
        inspection.take(*failure);
    }
}

} // namespace

int map(const MapRequest &request) {
    MemoryMap memory;
    door::Listener also;
    also.line = [&](const door::Line &line) { memory.take(line); };
    also.definition = [&](const door::Definition &definition) { memory.take(definition); };
    Inspection inspection = assemble(request.common, request.source, door::Outputs::kNowhere, also);
    const bool has_map = inspection.result.has_run;
    if (has_map && !request.svg.empty()) {
        write_svg(inspection, request.svg, memory);
    }
    const int status = inspection.status();
    bool is_shown = show(request.common, {{inspection.file, status, inspection.diagnostics}});
    if (has_map && request.svg.empty()) {
        const bool is_colourful = is_coloured(request.common.colour, true);
        is_shown = print(picture_of(memory, inspection.file, is_colourful)) && is_shown;
    }
    return is_shown ? status : kUnusable;
}
