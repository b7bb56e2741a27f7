// The string operations of the interpreter, as its manual describes them: positions from the front or, when negative,
// from the end, -1 for what is not found. The fuzz targets say with these what the text core has to give.
#pragma once

#include <string>
#include <vector>

namespace fuzz {

/// `text.find(part, start)`
long find(const std::string& text, const std::string& part, long start = 0);

/// `text[start:end]`
std::string slice(const std::string& text, long start, long end);

/// `text.split(separator)`
std::vector<std::string> split(const std::string& text, const std::string& separator);

/// `text.strip(bytes)`; without bytes, white space.
std::string strip(const std::string& text, const std::string& bytes = " \t\n\v\f\r");

/// `text.replace(from, to)`
std::string replace(const std::string& text, const std::string& from, const std::string& to);

/// `text.startswith(part)` and `text.endswith(part)`
bool startsWith(const std::string& text, const std::string& part);
bool endsWith(const std::string& text, const std::string& part);

/// What `readlines()` gives for a file of that content.
std::vector<std::string> lines(const std::string& content);

/// Ends the process, telling where, when the two differ.
void expectEqual(const std::string& what, const std::string& got, const std::string& wanted);

}  // namespace fuzz
