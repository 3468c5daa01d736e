#pragma once

#include <QtGlobal>

#include <cstddef>
#include <cstring>

/// The text of numbers in a report, written straight into a buffer.
///
/// Each function writes at `to`, where textRoom bytes must be free whatever the
/// length of the text, and returns the end of the text. What follows the end is
/// undefined.
namespace measurement::csv {

constexpr std::size_t textRoom = 32;

/// The longest text: -9223372036854775808.
constexpr std::size_t longestInteger = 20;
/// The longest text: -1.23457e-308.
constexpr std::size_t longestReal = 13;

char *writeUnsigned(char *to, quint64 value);
char *writeSigned(char *to, qint64 value);

/// The text of QString::number(value, 'g', 6), byte for byte: six significant
/// digits, rounded from the exact value with ties away from zero. The formatters
/// of the standard library round such ties to even and know a negative zero.
char *writeReal(char *to, double value);

/// A number that is written over and over and grows in small steps: adding to
/// its characters is faster than making them anew.
class DecimalCounter
{
public:
    /// A difference in a form that is fast to add.
    using Step = quint64;
    static Step stepOf(quint64 difference);

    void set(quint64 value);

    /// \return false when the number has to be set anew
    bool advance(Step step)
    {
        quint64 sum = 0;
        if (__builtin_add_overflow(m_lower, step, &sum))
            return false;
        // A byte whose digits make ten or more has wrapped, and holds what they
        // leave; the others still hold the excess that was to make them wrap.
        const quint64 unwrapped = sum >> 7 & inEveryByte(1);
        m_lower = sum - unwrapped * excess + inEveryByte('0');
        return m_lower < m_limit;
    }

    char *write(char *to) const
    {
        std::memcpy(to, m_upper, sizeof(m_upper)); // of constant size, so without a call
        const quint64 characters = __builtin_bswap64(m_lower) >> m_shift;
        std::memcpy(to + m_upperSize, &characters, sizeof(characters));
        return to + m_size;
    }

private:
    /// Makes a byte wrap when it is added to ten.
    static constexpr quint64 excess = 0x100 - 10;
    /// A step that carries out of all characters, whatever they are.
    static constexpr Step tooLarge = ~Step(0);

    static constexpr quint64 inEveryByte(quint64 value) { return value * Q_UINT64_C(0x0101010101010101); }

    quint64 m_lower = 0; ///< the last eight characters, the very last in the lowest byte
    quint64 m_limit = 0; ///< of m_lower, where the other members cease to be right
    int m_shift = 0;     ///< passes over leading zeros of m_lower
    std::ptrdiff_t m_upperSize = 0;
    std::ptrdiff_t m_size = 0;
    char m_upper[16] = {}; ///< the characters before, 12 at most
};

} // namespace measurement::csv
