#include "python_text.hpp"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

namespace {

long lengthOf(const std::string& text) {
    return static_cast<long>(text.size());
}

bool isAt(const std::string& text, const std::string& part, long position) {
    for (long index = 0; index < lengthOf(part); ++index) {
        if (position + index >= lengthOf(text)) return false;
        if (text[static_cast<std::size_t>(position + index)] != part[static_cast<std::size_t>(index)]) return false;
    }
    return true;
}

/// A slice's index as a position between the front and the end.
long clamp(long index, long length) {
    if (index < 0) index += length;
    if (index < 0) return 0;
    return index > length ? length : index;
}

bool isAmong(char byte, const std::string& bytes) {
    for (const char one : bytes) {
        if (one == byte) return true;
    }
    return false;
}

}  // namespace

long find(const std::string& text, const std::string& part, long start) {
    for (long position = start; position + lengthOf(part) <= lengthOf(text); ++position) {
        if (isAt(text, part, position)) return position;
    }
    return -1;
}

std::string slice(const std::string& text, long start, long end) {
    std::string result;
    for (long index = clamp(start, lengthOf(text)); index < clamp(end, lengthOf(text)); ++index) {
        result += text[static_cast<std::size_t>(index)];
    }
    return result;
}

std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts(1);
    for (long position = 0; position < lengthOf(text);) {
        if (isAt(text, separator, position)) {
            parts.emplace_back();
            position += lengthOf(separator);
        } else {
            parts.back() += text[static_cast<std::size_t>(position++)];
        }
    }
    return parts;
}

std::string strip(const std::string& text, const std::string& bytes) {
    long start = 0;
    long end = lengthOf(text);
    while (start < end && isAmong(text[static_cast<std::size_t>(start)], bytes)) {
        ++start;
    }
    while (end > start && isAmong(text[static_cast<std::size_t>(end - 1)], bytes)) {
        --end;
    }
    return slice(text, start, end);
}

std::string replace(const std::string& text, const std::string& from, const std::string& to) {
    std::string result;
    bool isFirst = true;
    for (const auto& part : split(text, from)) {
        if (!isFirst) result += to;
        result += part;
        isFirst = false;
    }
    return result;
}

bool startsWith(const std::string& text, const std::string& part) {
    return isAt(text, part, 0);
}

bool endsWith(const std::string& text, const std::string& part) {
    return lengthOf(part) <= lengthOf(text) && isAt(text, part, lengthOf(text) - lengthOf(part));
}

std::vector<std::string> lines(const std::string& content) {
    auto parts = split(content, "\n");
    for (std::size_t index = 0; index + 1 < parts.size(); ++index) {
        parts[index] += '\n';
    }
    if (parts.back().empty()) parts.pop_back();
    return parts;
}

void expectEqual(const std::string& what, const std::string& got, const std::string& wanted) {
    if (got == wanted) return;
    (void)std::fprintf(stderr, "%s is\n'%s'\nand should be\n'%s'\n", what.c_str(), got.c_str(), wanted.c_str());
    std::abort();
}

}  // namespace fuzz
