#include "dis/comparison.h"
#include "zirpa/assemble.h"
#include "zirpa/console.h"
#include "zirpa/programInput.h"

int diff(const DiffRequest &request) {
    const std::optional<dis::Listing> first = read_program(request.reading, request.first);
    const std::optional<dis::Listing> second = read_program(request.reading, request.second);
    if (!first || !second) {
        return kUnusable;
    }
    const dis::Comparison comparison = dis::compare(*first, *second);
    if (!print(dis::text_of(comparison, *first, *second))) {
        return kUnusable;
    }
    return comparison.is_same() ? 0 : 1;
}
