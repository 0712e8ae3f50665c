// A random source through the door, as zirpa has it: from memory to memory, with no file touched.
// The first byte chooses the options. Every place must be one of its line, in all formats.
#include "as/asData.h"
#include "tests/fuzz/agreement.h"
#include "zirpa/formats.h"
#include "zirpa/inspection.h"
#include "zirpa/memoryMap.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

// Reserving more would only make the runs longer.
constexpr std::int64_t kReservationLimit = 1024;

// Formats and pictures take most of the time and depend on little: one run in so many makes them.
constexpr std::size_t kShareOfFormats = 8;

std::vector<std::string> options_for(unsigned choice) {
    static constexpr std::array<const char *, 8> kOptions = {
        "-L", "-S", "-g", "-A", "-w", "-Cnocase", "-Cnopure", "-DFLAG"};
    std::vector<std::string> options;
    for (std::size_t i = 0; i < kOptions.size(); ++i) {
        if ((choice >> i & 1U) != 0) {
            options.emplace_back(kOptions[i]);
        }
    }
    return options;
}

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void check_place(const SourcePlace &place) {
    const int size = static_cast<int>(place.text.size());
    require(place.line >= 0 && place.first >= 0);
    require(place.first == 0 ? place.last == 0 : place.first <= place.last);
    require(place.first <= size + 1 && place.last <= size + 1);
}

const std::string *output(const door::Result &result, door::OutputKind kind) {
    for (const door::Output &each : result.outputs) {
        if (each.kind == kind) {
            return &each.bytes;
        }
    }
    return nullptr;
}

void check_outputs(const door::Result &result) {
    const std::string *records = output(result, door::OutputKind::kRecords);
    const std::string *script = output(result, door::OutputKind::kScript);
    if (records != nullptr && script != nullptr) {
        check_records(*records, *script);
    }
}

void make_all_formats(const Inspection &inspection, const MemoryMap &memory) {
    (void)picture_of(memory, "f.szirpa", true);
    (void)svg_of(memory, "f.szirpa");
    const std::vector<FileReport> reports = {
        {"f.szirpa", inspection.status(), inspection.diagnostics}};
    (void)json_of(reports);
    (void)sarif_of(reports);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    reservation_limit = kReservationLimit;
    Settings settings;
    settings.options = options_for(data[0]);
    settings.source = "f.szirpa";
    settings.text = std::string(reinterpret_cast<const char *>(data) + 1, size - 1);
    settings.outputs = door::Outputs::kMemory;
    settings.warnings.wanted.insert(kUnusedLabel);
    MemoryMap memory;
    door::Listener also;
    also.line = [&](const door::Line &line) { memory.take(line); };
    also.definition = [&](const door::Definition &definition) { memory.take(definition); };
    const Inspection inspection = inspect(settings, also);
    for (const Diagnostic &diagnostic : inspection.diagnostics) {
        check_place(diagnostic.place);
        for (const Note &note : diagnostic.notes) {
            check_place(note.place);
        }
    }
    check_outputs(inspection.result);
    (void)text_of(inspection.diagnostics, true);
    if (size % kShareOfFormats == 0) {
        make_all_formats(inspection, memory);
    }
    return 0;
}
