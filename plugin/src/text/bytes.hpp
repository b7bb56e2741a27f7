// Byte-string helpers that mean what the interpreter's own string methods mean.
//
// Everything that the module reads (feed line, catalogue, root files) is a string of bytes in no particular encoding:
// NUL bytes, bytes above 127 and lone carriage returns are ordinary content.
#pragma once

#include <cctype>
#include <string_view>

namespace morvesk::text {

/// Whether `byte` is white space to the interpreter's `str.strip()`: that method asks the C library, and so do we, but
/// for the printable ASCII bytes: of these the blank is white space in every locale and no other in any.
inline bool isSpace(char byte) {
    if (byte > ' ' && byte <= '~') return false;
    if (byte == ' ') return true;
    return std::isspace(static_cast<unsigned char>(byte)) != 0;
}

/// `bytes` less every leading and trailing byte for which `drop` holds.
template <typename Predicate>
std::string_view stripWhere(std::string_view bytes, Predicate drop) {
    const char* begin = bytes.data();
    const char* end = begin + bytes.size();
    while (begin != end && drop(*begin)) {
        ++begin;
    }
    while (begin != end && drop(end[-1])) {
        --end;
    }
    return {begin, static_cast<std::size_t>(end - begin)};
}

/// `bytes` less leading and trailing white space, as `str.strip()`.
inline std::string_view strip(std::string_view bytes) {
    return stripWhere(bytes, isSpace);
}

inline bool startsWith(std::string_view bytes, std::string_view prefix) {
    return bytes.substr(0, prefix.size()) == prefix;
}

inline bool endsWith(std::string_view bytes, std::string_view suffix) {
    return bytes.size() >= suffix.size() && bytes.substr(bytes.size() - suffix.size()) == suffix;
}

}  // namespace morvesk::text
