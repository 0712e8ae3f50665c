// The language server. The first byte chooses what the others are: the stream of a client that has
// begun a session, or edits, after which the server must answer as a fresh one does.
#include "as/asData.h"
#include "tests/lsp/session.h"
#include "zirpa/lsp/framing.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Reserving more would only make the runs longer.
constexpr std::int64_t kReservationLimit = 1024;

// Numbers from bytes; 0 when there are none left.
class ChoicesOfBytes : public Choices {
  public:
    explicit ChoicesOfBytes(std::string_view bytes) : bytes_(bytes) {}

    bool is_empty() const { return bytes_.empty(); }

    std::size_t below(std::size_t limit) override {
        if (bytes_.empty()) {
            return 0;
        }
        const auto value = static_cast<unsigned char>(bytes_.front());
        bytes_.remove_prefix(1);
        return value % limit;
    }

  private:
    std::string_view bytes_;
};

void take_stream(std::string_view bytes) {
    Session session;
    session.open("loop\tLDA\t#1+7%4\n\tBRA\tloop\n");
    lsp::Framing framing;
    framing.feed(bytes.substr(0, bytes.size() / 2));
    framing.feed(bytes.substr(bytes.size() / 2));
    while (const auto message = framing.next()) {
        session.take(std::string_view(*message));
        session.work();
    }
    // Messages that are nothing but the rest of the bytes.
    session.take(bytes);
    session.work();
}

void take_edits(std::string_view bytes) {
    ChoicesOfBytes choices(bytes);
    Session session;
    lsp::Document document;
    session.open("");
    while (!choices.is_empty()) {
        edit_randomly(choices, session, document);
        if (choices.below(2) != 0) {
            session.work();
        }
    }
    const lsp::Position position = random_position(choices);
    Session fresh;
    fresh.open(document.text());
    if (session.answers(position) != fresh.answers(position)) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    reservation_limit = kReservationLimit;
    const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
    if (data[0] % 2 == 0) {
        take_stream(bytes);
    } else {
        take_edits(bytes);
    }
    return 0;
}
