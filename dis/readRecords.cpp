// A line is checked from its left to its right, and the first fault of a line is told: what comes
// after a wrong digit or length means nothing.
#include "dis/lines.h"
#include "dis/reading.h"

#include <array>

namespace dis {

namespace {

constexpr std::size_t kHead = 4; // characters of type and length

// Where the digits of a byte of the record stand, counted from its address.
constexpr std::size_t column_of(std::size_t byte) { return kHead + 2 * byte; }

// Address bytes by the type; 0 for a type that is not used.
constexpr std::array<std::size_t, 10> kAddressBytes = {2, 2, 3, 4, 0, 2, 3, 4, 3, 2};

struct Record {
    int type = 0;
    std::vector<std::uint8_t> bytes; // address and data

    std::size_t width() const { return kAddressBytes[static_cast<std::size_t>(type)]; }
    std::uint32_t address() const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < width(); ++i) {
            value = value << 8U | bytes[i];
        }
        return value;
    }
    bool is_data() const { return type >= 1 && type <= 3; }
    bool is_count() const { return type == 5 || type == 6; }
    bool is_end() const { return type >= 7; }
};

class RecordReader {
  public:
    RecordReader(std::string_view content, Program &program, Faults &faults)
        : lines_(content), program_(program), faults_(faults) {}

    void read_all();

  private:
    void read_line();
    void after_end();
    bool parse(Record &record);
    bool has_digits(std::string_view line);
    bool has_length(std::string_view line, const Record &record);
    bool is_in_order(const Record &record);
    void take(const Record &record);
    void take_data(const Record &record);
    void take_count(const Record &record);
    void take_end(const Record &record);
    void add(std::string_view id, std::string message, std::size_t begin, std::size_t end) {
        faults_.add(lines_.fault(id, std::move(message), begin, end));
    }

    Lines lines_;
    Program &program_;
    Faults &faults_;
    std::uint32_t data_records_ = 0;
    bool has_begun_ = false;
    bool has_ended_ = false;
    bool has_debug_records_ = false;
};

void RecordReader::read_all() {
    while (!faults_.is_full() && lines_.next()) {
        if (!lines_.text().empty()) {
            read_line();
        }
    }
    if (!has_ended_ && faults_.is_empty()) {
        faults_.add(lines_.fault("cut-file", "the file ends without an end record (S7, S8 or S9)",
                                 lines_.text().size(), lines_.text().size() + 1));
    }
}

void RecordReader::read_line() {
    const std::string_view line = lines_.text();
    const bool is_record = line.size() >= 2 && line[0] == 'S' && line[1] >= '0' && line[1] <= '9';
    if (has_ended_ && !is_record) {
        after_end();
        return;
    }
    Record record;
    if (has_debug_records_ || !parse(record)) {
        return;
    }
    if (is_in_order(record)) {
        take(record);
    }
    has_begun_ = true;
}

// Debug records may go on in lines of any form, which a compiler has written.
void RecordReader::after_end() {
    if (take_debug_record(lines_.text(), program_)) {
        has_debug_records_ = true;
    } else if (!has_debug_records_) {
        faults_.add(lines_.fault("record-order", "after the end record come debug records alone"));
    }
}

// Type, length, address, data and checksum of the line. False after a fault.
bool RecordReader::parse(Record &record) {
    const std::string_view line = lines_.text();
    if (line[0] != 'S' || line.size() < 2 || line[1] < '0' || line[1] > '9') {
        add("bad-record", "a record begins with S and a digit", 0, 2);
        return false;
    }
    record.type = line[1] - '0';
    if (record.width() == 0) {
        add("bad-record", "the type S4 is not used", 0, 2);
        return false;
    }
    if (!has_digits(line)) {
        return false;
    }
    unsigned sum = 0;
    for (std::size_t i = 2; i + 1 < line.size(); i += 2) {
        const int byte = hex_digit(line[i]) * 16 + hex_digit(line[i + 1]);
        sum += static_cast<unsigned>(byte);
        record.bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    if (!has_length(line, record)) {
        return false;
    }
    const unsigned right = ~(sum - record.bytes.back()) & 0xFFU;
    if (record.bytes.back() != right) {
        add("record-checksum",
            "the checksum is " + hex(record.bytes.back()) + ", but " + hex(right) + " by the bytes",
            line.size() - 2, line.size());
        return false;
    }
    record.bytes.erase(record.bytes.begin());
    record.bytes.pop_back();
    return true;
}

bool RecordReader::has_digits(std::string_view line) {
    for (std::size_t i = 2; i < line.size(); ++i) {
        if (hex_digit(line[i]) < 0) {
            add("bad-record", "this is no hexadecimal digit", i, i + 1);
            return false;
        }
    }
    if (line.size() % 2 != 0 || line.size() < kHead) {
        add("record-length", "the line ends within a byte", line.size() - 1, line.size());
        return false;
    }
    return true;
}

// The record's first byte is the length, as it stands there.
bool RecordReader::has_length(std::string_view line, const Record &record) {
    const std::size_t length = record.bytes[0];
    const std::size_t found = (line.size() - kHead) / 2;
    if (length != found) {
        add("record-length",
            "the length is " + std::to_string(length) + ", but " + std::to_string(found) +
                (found == 1 ? " byte follows" : " bytes follow"),
            2, kHead);
        return false;
    }
    const bool has_data = record.type == 0 || record.is_data();
    if (length < record.width() + 1 || (!has_data && length > record.width() + 1)) {
        add("record-length",
            "a record of this type has " + std::to_string(record.width()) + " bytes of address" +
                (has_data ? "" : " and nothing more"),
            2, kHead);
        return false;
    }
    return true;
}

bool RecordReader::is_in_order(const Record &record) {
    if (has_ended_) {
        add("record-order", "a record comes after the end record", 0, 2);
        return false;
    }
    if (record.type == 0 && has_begun_) {
        add("record-order", "a header comes after other records", 0, 2);
        return false;
    }
    return true;
}

void RecordReader::take(const Record &record) {
    if (record.is_data()) {
        take_data(record);
    } else if (record.is_count()) {
        take_count(record);
    } else if (record.is_end()) {
        take_end(record);
    }
}

void RecordReader::take_data(const Record &record) {
    ++data_records_;
    std::uint32_t address = record.address();
    for (std::size_t i = record.width(); i < record.bytes.size(); ++i, ++address) {
        if (!program_.image.set(address, record.bytes[i])) {
            const Fault fault = fault_of_address(address);
            const bool is_first = i == record.width() && address >= kAddresses;
            add(fault.id, fault.message, column_of(is_first ? 0 : i),
                column_of(is_first ? record.width() : i + 1));
            return;
        }
    }
}

void RecordReader::take_count(const Record &record) {
    const std::uint32_t count = record.address();
    const std::uint32_t mask = record.type == 5 ? 0xFFFFU : 0xFFFFFFU;
    if (count != (data_records_ & mask)) {
        add("record-count",
            "the count is " + std::to_string(count) + ", but there are " +
                std::to_string(data_records_) + " data records",
            kHead, column_of(record.width()));
    }
}

void RecordReader::take_end(const Record &record) {
    has_ended_ = true;
    if (record.address() >= kAddresses) {
        add("address-beyond-ffff", fault_of_address(record.address()).message, kHead,
            column_of(record.width()));
        return;
    }
    program_.entry = record.address();
}

} // namespace

void read_records(std::string_view content, Program &program, Faults &faults) {
    RecordReader(content, program, faults).read_all();
}

} // namespace dis
