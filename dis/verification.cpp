#include "dis/verification.h"

#include "dis/lines.h"
#include "dis/reading.h"
#include "door/door.h"

namespace dis {

namespace {

std::string difference(const Image &wanted, const Image &made) {
    for (std::uint32_t address = 0; address < kAddresses; ++address) {
        if (wanted.holds(address) == made.holds(address) &&
            wanted.at(address) == made.at(address)) {
            continue;
        }
        const auto shown = [=](const Image &image) {
            return image.holds(address) ? hex(image.at(address)) : "nothing";
        };
        return "at " + hex_address(address) + " it has " + shown(made) + ", not " + shown(wanted);
    }
    return {};
}

} // namespace

std::string difference(const std::string &source, const Program &program) {
    std::string first_error;
    door::Listener listener;
    listener.report = [&](const door::Report &report) {
        if (first_error.empty() && report.kind != door::Kind::kWarning) {
            first_error =
                "line " + std::to_string(report.place.line) + ": " + std::string(report.text);
        }
    };
    door::Run run;
    run.source = "dis.szirpa";
    run.text = source;
    run.outputs = door::Outputs::kMemory;
    const door::Result result = door::run(run, listener);
    if (!first_error.empty()) {
        return first_error;
    }
    for (const door::Output &output : result.outputs) {
        if (output.kind == door::OutputKind::kRecords) {
            const Reading reading = read(output.bytes, InputFormat::kRecords, 0);
            if (!reading.faults.empty()) {
                return reading.faults.front().message;
            }
            std::string found = difference(program.image, reading.program.image);
            if (found.empty() && start_of(program) != start_of(reading.program)) {
                found = "it starts at " + hex_address(start_of(reading.program)) + ", not " +
                        hex_address(start_of(program));
            }
            return found;
        }
    }
    return "it assembles to nothing";
}

} // namespace dis
