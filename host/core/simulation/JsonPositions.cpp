#include "host/core/simulation/JsonPositions.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <vector>

namespace host {

namespace {

using nlohmann::json;

// The positions keep a whole pointer for each value and key, so these bound the
// memory that a hostile text can ask for.
constexpr std::size_t MaxDepth = 32;
constexpr std::size_t MaxKeyCharacters = 64;
constexpr int MaxValues = 20'000;

// Bytes of a text that a message repeats.
constexpr std::size_t MaxQuotedBytes = 80;

bool continuesCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U;
}

std::size_t characterCount(std::string_view utf8)
{
    return utf8.size() - static_cast<std::size_t>(std::ranges::count_if(utf8, continuesCharacter));
}

void appendEscaped(std::string &result, std::string_view text)
{
    constexpr char Digits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<unsigned char>(text[i]);
        bool isControl = code < 0x20 || code == 0x7f;
        // U+0080 to U+009F, some of which steer terminals too
        if (code == 0xc2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xa0) {
            code = static_cast<unsigned char>(text[++i]);
            isControl = true;
        }
        if (isControl)
            result.append("\\u00").append({Digits[code >> 4U], Digits[code & 0xfU]});
        else
            result += text[i];
    }
}

/// Feeds the parser and tells how far it has read.
class CountingIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    CountingIterator(const char *at, const char **furthest)
        : m_at(at)
        , m_furthest(furthest)
    {
    }

    reference operator*() const { return *m_at; }

    CountingIterator &operator++()
    {
        ++m_at;
        *m_furthest = m_at;
        return *this;
    }

    CountingIterator operator++(int)
    {
        CountingIterator before = *this;
        ++*this;
        return before;
    }

    friend bool operator==(const CountingIterator &a, const CountingIterator &b) { return a.m_at == b.m_at; }

private:
    const char *m_at;
    const char **m_furthest; ///< shared by all copies
};

/// Notes where each token begins. The parser reports a token once it has read
/// to its end (one character further after a number, but that one begins no
/// value), so the token begins at the first character after the one before
/// that is no blank, comma or colon.
class PositionHandler : public nlohmann::json_sax<json>
{
public:
    PositionHandler(std::string_view text, JsonPositions &positions)
        : m_text(text)
        , m_furthest(text.data())
        , m_positions(positions)
    {
    }

    const char **furthest() { return &m_furthest; }

    bool null() override { return scalar(); }
    bool boolean(bool /*val*/) override { return scalar(); }
    bool number_integer(number_integer_t /*val*/) override { return scalar(); }
    bool number_unsigned(number_unsigned_t /*val*/) override { return scalar(); }
    bool number_float(number_float_t /*val*/, const string_t & /*s*/) override { return scalar(); }
    bool string(string_t & /*val*/) override { return scalar(); }
    bool binary(binary_t & /*val*/) override { return false; }

    bool start_object(std::size_t /*elements*/) override { return startContainer(false); }
    bool end_object() override { return endContainer(); }
    bool start_array(std::size_t /*elements*/) override { return startContainer(true); }
    bool end_array() override { return endContainer(); }

    bool key(string_t &val) override
    {
        const std::size_t offset = takeTokenStart();
        if (characterCount(val) > MaxKeyCharacters)
            return fail(offset, "the key " + inQuotes(val) + " is longer than " +
                                    std::to_string(MaxKeyCharacters) + " characters");
        m_open.back().step = pointerStep(val);
        if (!m_positions.keys.emplace(pointer(), offset).second)
            return fail(offset, "duplicate key " + inQuotes(val));
        return true;
    }

    bool parse_error(std::size_t position, const std::string & /*last_token*/,
                     const json::exception &exception) override
    {
        // "[json.exception.x.n] parse error at line l, column c: text"
        std::string message = exception.what();
        const std::size_t prefix = message.find(": ");
        if (message.find("parse error at") != std::string::npos && prefix != std::string::npos)
            message.erase(0, prefix + 2);
        else if (const std::size_t id = message.find("] "); id != std::string::npos)
            message.erase(0, id + 2);
        return fail(position > 0 ? position - 1 : 0, message);
    }

private:
    struct Container
    {
        bool isArray;
        std::size_t index = 0; ///< of the next element
        std::string step{};    ///< of the present member
    };

    bool fail(std::size_t offset, const std::string &message)
    {
        m_positions.problem = JsonPositions::Problem{offset, message};
        return false;
    }

    std::string pointer() const
    {
        std::string result;
        for (const Container &container : m_open)
            result += container.step;
        return result;
    }

    std::size_t takeTokenStart()
    {
        const std::size_t start = std::min(m_text.find_first_not_of(" \t\r\n,:", m_tokenEnd), m_text.size());
        m_tokenEnd = static_cast<std::size_t>(m_furthest - m_text.data());
        return start;
    }

    bool beginValue()
    {
        const std::size_t offset = takeTokenStart();
        if (++m_valueCount > MaxValues)
            return fail(offset, "too many values: a file can have at most " + std::to_string(MaxValues));
        if (!m_open.empty() && m_open.back().isArray)
            m_open.back().step = pointerStep(std::to_string(m_open.back().index++));
        m_positions.values.emplace(pointer(), offset);
        return true;
    }

    bool scalar() { return beginValue(); }

    bool startContainer(bool isArray)
    {
        if (!beginValue())
            return false;
        if (m_open.size() >= MaxDepth)
            return fail(m_tokenEnd - 1, "nested too deeply");
        m_open.push_back({isArray});
        return true;
    }

    bool endContainer()
    {
        m_open.pop_back();
        m_tokenEnd = static_cast<std::size_t>(m_furthest - m_text.data());
        return true;
    }

    std::string_view m_text;
    const char *m_furthest;
    JsonPositions &m_positions;
    std::vector<Container> m_open;
    std::size_t m_tokenEnd = 0;
    int m_valueCount = 0;
};

} // namespace

TextPosition textPosition(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    TextPosition position;
    position.line += static_cast<int>(std::ranges::count(before, '\n'));
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t lineBegin = lineBreak == std::string_view::npos ? 0 : lineBreak + 1;
    position.column += static_cast<int>(before.size() - lineBegin);
    return position;
}

std::size_t JsonPositions::find(std::string pointer) const
{
    for (;;) {
        const auto value = values.find(pointer);
        if (value != values.end())
            return value->second;
        if (pointer.empty())
            return 0;
        pointer.erase(pointer.rfind('/'));
    }
}

JsonPositions locateJson(std::string_view text)
{
    JsonPositions positions;
    PositionHandler handler(text, positions);
    json::sax_parse(CountingIterator(text.data(), handler.furthest()),
                    CountingIterator(text.data() + text.size(), handler.furthest()), &handler);
    return positions;
}

std::string printable(std::string_view text, std::size_t maxBytes)
{
    std::string result;
    if (text.size() <= maxBytes) {
        appendEscaped(result, text);
        return result;
    }
    // The end of a parser's message tells as much as its beginning.
    std::size_t head = maxBytes * 2 / 3;
    while (head > 0 && continuesCharacter(text[head]))
        --head;
    std::size_t tail = text.size() - maxBytes / 3;
    while (tail < text.size() && continuesCharacter(text[tail]))
        ++tail;
    appendEscaped(result, text.substr(0, head));
    result += "...";
    appendEscaped(result, text.substr(tail));
    return result;
}

std::string inQuotes(std::string_view text)
{
    return '"' + printable(text, MaxQuotedBytes) + '"';
}

std::string pointerStep(std::string_view key)
{
    std::string step = "/";
    for (const char c : key) {
        if (c == '~')
            step += "~0";
        else if (c == '/')
            step += "~1";
        else
            step += c;
    }
    return step;
}

} // namespace host
