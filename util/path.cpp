// Paths are taken apart and put together as text; nothing here asks the file system but for the
// working directory. So a link in a path is not followed, and ".." takes back the name before it.
//
// The rules of canonical paths know the backslash as the separator, and drives and servers as
// roots. A path of this system is turned into that form, made canonical there and turned back.
#include "util/path.h"

#include "util/text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <unistd.h>

namespace {

// The directory buffer that callers can observe: longer working directories count as unavailable.
constexpr std::size_t kDirectoryCapacity = 512;

bool is_separator(char ch) { return ch == '/' || ch == '\\'; }

bool is_ascii_letter(char ch) { return has_class(ch, kClassLetter); }

// The length of the part that ".." never removes: a root, a drive, or a server and share.
std::size_t root_length(std::string_view path) {
    if (path.size() >= 2 && path[0] == '\\' && path[1] == '\\') {
        const std::size_t server_end = path.find('\\', 2);
        if (server_end == std::string_view::npos) {
            return path.size();
        }
        const std::size_t share_end = path.find('\\', server_end + 1);
        return share_end == std::string_view::npos ? path.size() : share_end + 1;
    }
    if (!path.empty() && path[0] == '\\') {
        return 1;
    }
    if (path.size() >= 2 && is_ascii_letter(path[0]) && path[1] == ':') {
        return path.size() >= 3 && path[2] == '\\' ? 3 : 2;
    }
    return 0;
}

// Removes the last component of what has been built so far, not reaching into the root.
void remove_component(std::string &built, std::size_t root) {
    if (built.size() <= root) {
        return;
    }
    if (built.back() == '\\') {
        built.pop_back();
    }
    const std::size_t separator = built.rfind('\\');
    const std::size_t keep = separator == std::string::npos ? 0 : separator + 1;
    built.resize(std::max(keep, root));
}

} // namespace

std::string getMyDirectory() {
    std::array<char, kDirectoryCapacity> buffer;
    return getcwd(buffer.data(), buffer.size()) == nullptr ? std::string() : buffer.data();
}

bool PathHasRoot(const char *path) { return path != nullptr && *path == '/'; }

const char *StringHasPath(const char *str) {
    const char *last = nullptr;
    for (const char *p = str; p != nullptr && *p != '\0'; ++p) {
        if (is_separator(*p)) {
            last = p;
        }
    }
    return last;
}

const char *FilenameFromPath(const char *str) {
    const char *separator = StringHasPath(str);
    return separator == nullptr ? str : separator + 1;
}

void PathFromPathName(std::string &dst, const char *str) {
    const char *separator = StringHasPath(str);
    if (separator == nullptr || separator == str) {
        dst.clear();
    } else {
        dst.assign(str, separator);
    }
}

void RemoveExtension(std::string &name) {
    const std::size_t dot = name.rfind('.');
    // The search does not stop at a separator, so "dir.old/prog" becomes "dir"; callers
    // pass bare names.
    if (dot != std::string::npos && dot != 0) {
        name.resize(dot);
    }
}

void makePathAbsoluteUX(std::string &dst, const char *path) {
    std::string joined;
    if (!PathHasRoot(path)) {
        joined = getMyDirectory() + "/";
    }
    joined += path;
    std::string normalised;
    winfilename(normalised, joined);
    dst = PathCanonicalizeA(normalised);
    std::replace(dst.begin(), dst.end(), '\\', '/');
}

// Pairs are dropped from left to right, so of three slashes two are left; at the start of a path
// those are taken for the root of a server's name.
void winfilename(std::string &dst, std::string &src) {
    std::replace(src.begin(), src.end(), '\\', '/');
    dst.clear();
    std::string_view rest = src;
    std::size_t slash = rest.find('/');
    while (slash != std::string_view::npos) {
        dst += rest.substr(0, slash);
        dst += '\\';
        rest.remove_prefix(slash + (rest.substr(slash, 2) == "//" ? 2 : 1));
        slash = rest.find('/');
    }
    dst += rest;
}

// Copies component by component and takes the last one back at "..": what has been built is always
// canonical, and its root, which is copied first, is never touched.
std::string PathCanonicalizeA(std::string_view path) {
    if (path.empty()) {
        return "\\";
    }
    const std::size_t root = root_length(path);
    std::string built(path.substr(0, root));
    std::size_t i = root;
    while (i < path.size()) {
        const bool at_component = built.empty() || built.back() == '\\' || i == root;
        const std::string_view rest = path.substr(i);
        if (at_component && rest.substr(0, 2) == ".\\") {
            i += 2;
        } else if (at_component && i != 0 && rest.substr(0, 2) == "..") {
            remove_component(built, root);
            i += 2;
            if (i < path.size() && path[i] == '\\') {
                ++i;
            }
        } else {
            // The rest of the component, its separator included.
            const std::size_t separator = path.find('\\', i);
            const std::size_t end =
                separator == std::string_view::npos ? path.size() : separator + 1;
            built += path.substr(i, end - i);
            i = end;
        }
    }
    const bool bare_drive = built.size() == 2 && is_ascii_letter(built[0]) && built[1] == ':';
    return bare_drive ? built + "\\" : built;
}

const char *copyFname(std::string &dst, const char *text) {
    if (*text == '"') {
        return copyquoted(dst, text);
    }
    dst.clear();
    if (*text == ';' || isblanc(*text)) {
        return nullptr;
    }
    const char *p = text;
    while (*p != ';' && !isblanc(*p)) {
        ++p;
    }
    dst.assign(text, p);
    return *p == '\0' ? nullptr : p;
}
