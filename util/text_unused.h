// The members of the text scanning family that this assembler does not call.
//
// The family is kept whole, so that whoever reads another form of source finds its member ready and
// tested. Nothing but its tests and fuzzers includes this file. What util/text.h says of sources,
// results and signed bytes holds here too.
#pragma once

#include <cstddef>
#include <string>

// ---- Tests and skips ----

// Advances to the first c, or to the end.
const char *skip_to(const char *p, char c);

// Advances to the first name character; null if the text ends first.
const char *skipNameDelimiter(const char *p);

// Advances past characters below 33, "," and ";"; null if the text ends first.
const char *skipFNameDelimiter(const char *p);

// Skips characters above 32 (signed).
const char *skipnonblanc(const char *p);

// True when the word at text equals name: letters of either case are equal, "/" and "\" are equal,
// the word ends at the first blank (isblanc) and the name at its NUL, and both must end together.
bool namecomparei(const char *text, const char *name);

// True if the text has at least two characters and ends in a backslash and a line feed.
bool line_continued(const char *s);

// Compares two texts up to their line ends: true if they agree up to a line end of either. A
// carriage return in a ends the comparison with true whatever b holds there; a line feed in a is a
// character like any other unless b has a line end there too.
bool nlstrcmp(const char *a, const char *b);

// ---- Copies: each replaces what the destination held, the ...cat forms append to it ----

// The text up to its line end, less a backslash ("+" for the div... forms) as its last character.
// With a null source such a character is removed from the end of the destination instead.
const char *clstrcpy(std::string &d, const char *s);
const char *divstrcpy(std::string &d, const char *s);
const char *clstrcat(std::string &d, const char *s);
const char *divstrcat(std::string &d, const char *s);

// Name characters. A null source gives an empty destination and returns null in extractname;
// copyCname must not be given one.
const char *extractname(std::string &d, const char *s);
const char *copyCname(std::string &d, const char *s);

// Name characters and "=".
const char *copyMacroname(std::string &d, const char *s);

// At most n characters above 32. With n = 0 the destination is left unchanged and its own text is
// returned.
const char *extractsizedtoblanc(std::string &d, const char *s, std::size_t n);

// The text up to ":" or the first blank (isblanc).
const char *copyLabel(std::string &d, const char *s);

// The text between the first double quote and the next or the end; the result is the position of
// the closing quote or the end. With no quote: empty, and null.
const char *extractquoted(std::string &d, const char *s);

// The text from the first double quote up to one that is followed by a blank or the end. With no
// quote: empty, and null.
const char *extractquotedoption(std::string &d, const char *s);

// The bracketed text from the first open to the next close, both included, within max characters
// and before any control character. Returns the position after close, or null.
const char *extract(std::string &d, const char *s, char open, char close, std::size_t max);
