// What the outputs of a run must agree about, whatever the source.
#pragma once

#include <string>

// Ends the process with a message unless every S-record has the right length and checksum and the
// script sets what the records hold. Debug records are passed over.
void check_records(const std::string &records, const std::string &script);

// The same unless the C array holds the bytes of the data records in their order.
void check_array(const std::string &records, const std::string &array);
