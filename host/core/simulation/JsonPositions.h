#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A place in a text, both from 1; columns count bytes.
struct TextPosition
{
    int line = 1;
    int column = 1;
};

TextPosition textPosition(std::string_view text, std::size_t offset);

/// Where the values of a JSON text stand.
struct JsonPositions
{
    struct Problem
    {
        std::size_t offset;
        std::string message;
    };

    /// By JSON pointer: offset of a value's first character, and of the key of
    /// an object's member.
    std::map<std::string, std::size_t> values;
    std::map<std::string, std::size_t> keys;

    /// Set when the text is no JSON, nests too deeply, repeats a key or has a
    /// very long one, or has very many values: what is wrong, and the maps hold
    /// what came before it.
    std::optional<Problem> problem;

    /// The value's place; of the nearest value around it when it has none.
    std::size_t find(std::string pointer) const;
};

JsonPositions locateJson(std::string_view text);

/// `text` fit for one line of a message: control characters are escaped as in
/// JSON and, when it has more than `maxBytes`, its middle is left out.
std::string printable(std::string_view text, std::size_t maxBytes);

/// A key or name as part of a message: printable, short, in quotes.
std::string inQuotes(std::string_view text);

/// `key` as one step of a JSON pointer, with its slash.
std::string pointerStep(std::string_view key);

} // namespace host
