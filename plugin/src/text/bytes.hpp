// Byte-string helpers that mean what the interpreter's own string methods mean.
//
// Everything that the module reads (feed line, catalogue, root files) is a string of bytes in no particular encoding:
// NUL bytes, bytes above 127 and lone carriage returns are ordinary content.
#pragma once

#include <cctype>
#include <string_view>

namespace morvesk::text {

/// Whether `byte` is white space to the interpreter's `str.strip()`: that method asks the C library, and so do we, but
/// for the printable ASCII bytes, which are white space in no locale.
inline bool isSpace(char byte) {
    const bool isPrintable = byte > ' ' && byte <= '~';
    return !isPrintable && std::isspace(static_cast<unsigned char>(byte)) != 0;
}

/// `bytes` less every leading and trailing byte for which `drop` holds.
template <typename Predicate>
std::string_view stripWhere(std::string_view bytes, Predicate drop) {
    while (!bytes.empty() && drop(bytes.front())) {
        bytes.remove_prefix(1);
    }
    while (!bytes.empty() && drop(bytes.back())) {
        bytes.remove_suffix(1);
    }
    return bytes;
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
