// Whether a server that has seen any edits answers as one that has just been given the text.
//
//     lsp_edits [EDITS [SEED]]
//
// A difference is shown with the text and ends the run with status 1.
#include "tests/lsp/session.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

namespace {

// Edits of one session, after which another one begins with nothing.
constexpr long kEditsOfSession = 500;

// One edit in so many is followed by a comparison. Others come one on top of the other, as a hand
// types, whether the server has analysed the text in between or not.
constexpr std::size_t kShareCompared = 4;

class RandomChoices : public Choices {
  public:
    explicit RandomChoices(unsigned long seed) : engine_(seed) {}
    std::size_t below(std::size_t limit) override { return engine_() % limit; }

  private:
    std::mt19937_64 engine_;
};

long number(const char *word) { return std::strtol(word, nullptr, 10); }

bool is_same(Choices &choices, Session &session, const lsp::Document &document) {
    const lsp::Position position = random_position(choices);
    Session fresh;
    fresh.open(document.text());
    const std::string expected = fresh.answers(position);
    const std::string answered = session.answers(position);
    if (expected == answered) {
        return true;
    }
    std::printf("the text:\n%s\nthe answers:\n%s\nthose of a fresh server:\n%s\n",
                document.text().c_str(), answered.c_str(), expected.c_str());
    return false;
}

} // namespace

int main(int argc, char **argv) {
    const long edits = argc > 1 ? number(argv[1]) : 1000;
    RandomChoices choices(argc > 2 ? static_cast<unsigned long>(number(argv[2])) : 1);
    std::unique_ptr<Session> session;
    lsp::Document document;
    for (long i = 0; i < edits; ++i) {
        if (i % kEditsOfSession == 0) {
            session = std::make_unique<Session>();
            document = lsp::Document();
            session->open("");
        }
        edit_randomly(choices, *session, document);
        const bool is_compared = i + 1 == edits || choices.below(kShareCompared) == 0;
        if (is_compared && !is_same(choices, *session, document)) {
            std::printf("after edit %ld\n", i);
            return 1;
        }
        if (!is_compared && choices.below(2) == 0) {
            session->work();
        }
    }
    std::printf("%ld edits, no difference\n", edits);
    return 0;
}
