// The 64-bit readers share fields and digits with the live ones; they differ in what they store.
#include "util/number_unused.h"

#include "util/number.h"

namespace {

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63U;

int store_signed(const NumberField &field, std::int64_t &value) {
    if ((field.magnitude & kSignBit) != 0) {
        return -1;
    }
    const auto number = static_cast<std::int64_t>(field.magnitude);
    value = field.is_negative ? -number : number;
    return 0;
}

} // namespace

int to_ulonglong(const char *text, std::uint64_t &value, int base) {
    return *text == '\0' ? -1 : read_field(text, base, value);
}

int base_to_ulonglong(const char *text, std::uint64_t &value, int base) {
    return to_ulonglong(text, value, base);
}

int base_to_longlong(const char *text, std::int64_t &value, int base) {
    NumberField field;
    return read_signed_field(text, base, field) != 0 ? -1 : store_signed(field, value);
}

int ascii_to_longlong(const char *text, std::int64_t &value) {
    NumberField field;
    return read_chosen_field(text, true, field) != 0 ? -1 : store_signed(field, value);
}
