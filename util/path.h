// Path and file-name utilities: deriving output names and recording sources under canonical paths.
//
// Paths are POSIX paths, but "\" is accepted as a separator everywhere, because sources name files
// in either style. Canonicalisation is done in the backslash form and converted back.
#pragma once

#include <string>
#include <string_view>

// The current working directory; empty if it cannot be had or is longer than 511 bytes.
std::string getMyDirectory();

// True when the path is not null and begins with "/".
bool PathHasRoot(const char *path);

// The position of the last separator of either kind, or null.
const char *StringHasPath(const char *str);

// The part after the last separator; the whole string when there is none; null for null.
const char *FilenameFromPath(const char *str);

// The text before the last separator, without it. A separator in the first position is not found; a
// name without any separator has an empty directory part.
void PathFromPathName(std::string &dst, const char *str);

// Cuts the name at its last "."; a leading dot is kept.
void RemoveExtension(std::string &name);

// The absolute canonical form of a path: relative paths are joined to the working directory.
void makePathAbsoluteUX(std::string &dst, const char *path);

// Turns every "\" into "/" (in src too), drops the second slash of every pair, then turns every "/"
// into "\".
void winfilename(std::string &dst, std::string &src);

// Resolves "." and ".." components of a path in backslash form, never climbing above the root.
std::string PathCanonicalizeA(std::string_view path);

// Reads a file-name operand: quoted up to the next double quote, else up to a blank or ";". Returns
// the rest of the text, or null when nothing follows.
const char *copyFname(std::string &dst, const char *text);
