#include "measurement/CsvText.h"

#include <QString>

#include <array>
#include <bit>
#include <cstring>

namespace measurement::csv {

namespace {

// Digits are put together in registers, the first in the lowest byte.
static_assert(std::endian::native == std::endian::little);

__extension__ using Wide = unsigned __int128;

/// Binary exponents of the values that are formatted here; all others are rare
/// enough to be left to Qt. Above, a value no longer fits an integer; below, its
/// power of five no longer does.
constexpr int lowestExponent = -70;
constexpr int highestExponent = 62;

constexpr int lowestDecade = -22;
constexpr double decades[] = {1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12,
                              1e-11, 1e-10, 1e-9,  1e-8,  1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,
                              1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,   1e7,   1e8,   1e9,   1e10,
                              1e11,  1e12,  1e13,  1e14,  1e15,  1e16,  1e17,  1e18,  1e19};

constexpr double decade(int exponent)
{
    return decades[exponent - lowestDecade];
}

template <std::size_t count> constexpr std::array<quint64, count> powersOf(quint64 base)
{
    std::array<quint64, count> powers = {};
    quint64 power = 1;
    for (quint64 &entry : powers) {
        entry = power;
        power *= base; // wraps behind the last entry only
    }
    return powers;
}

constexpr auto powersOfFive = powersOf<28>(5);
constexpr auto powersOfTen = powersOf<15>(10);

constexpr quint64 zeros = 0x3030303030303030;

void store(char *to, quint64 characters)
{
    std::memcpy(to, &characters, sizeof(characters));
}

/// The eight digits of a number below 10^8, as values, with leading zeros.
quint64 eightDigits(quint32 value)
{
    // Halves, then pairs, then digits; the factors divide by 100 and by 10.
    const quint64 halves = value / 10000 | static_cast<quint64>(value % 10000) << 32;
    const quint64 upper = (halves * 10486 >> 20) & 0x0000007f0000007f;
    const quint64 pairs = upper | (halves - upper * 100) << 16;
    const quint64 tens = (pairs * 103 >> 10) & 0x000f000f000f000f;
    return tens | (pairs - tens * 10) << 8;
}

/// Without leading zeros; a number below 10^8.
char *writeShort(char *to, quint32 value)
{
    const quint64 digits = eightDigits(value);
    // The last digit stays, even if it is 0.
    const int skipped = std::countr_zero(digits | quint64(1) << 56) / 8;
    store(to, (digits | zeros) >> (skipped * 8));
    return to + (8 - skipped);
}

char *writeEight(char *to, quint32 value)
{
    store(to, eightDigits(value) | zeros);
    return to + 8;
}

/// Six significant digits: the value is digits * 10^(exponent - 5).
struct Rounded
{
    quint32 digits;
    int exponent;
};

/// \param exponent of the value's decade, below 6
quint32 roundSmall(quint64 mantissa, int binaryExponent, int exponent)
{
    // mantissa * 2^(binary - 52) * 10^(5 - exponent), exactly, as a binary
    // fraction with `fraction` places, between 33 and 96 of them.
    const int scale = 5 - exponent;
    const int fraction = 52 - binaryExponent - scale;
    const Wide product = static_cast<Wide>(mantissa) * powersOfFive[static_cast<std::size_t>(scale)];
    return static_cast<quint32>((product + (Wide(1) << (fraction - 1))) >> fraction);
}

/// \param exponent of the value's decade, from 6 to 18
quint32 roundLarge(double value, int exponent)
{
    // Half a unit is a whole number here, so the value's fraction is irrelevant.
    const quint64 unit = powersOfTen[static_cast<std::size_t>(exponent - 5)];
    const quint64 number = static_cast<quint64>(value) + unit / 2;
    // The estimate misses by one at most; a division would take much longer.
    const auto estimate = static_cast<quint64>(static_cast<double>(number) * decade(5 - exponent));
    const auto rest = static_cast<qint64>(number - estimate * unit);
    const quint32 step = rest >= static_cast<qint64>(unit) ? 1 : 0;
    return static_cast<quint32>(estimate) + step - (rest < 0 ? 1 : 0);
}

Rounded roundToSix(double value, quint64 mantissa, int binaryExponent)
{
    // log10(2), close enough for these exponents. A decade below 1 that lies a
    // little above its double counts that double as its own; it rounds to the
    // same digits either way.
    int exponent = (binaryExponent * 1233) >> 12;
    exponent += value >= decade(exponent + 1) ? 1 : 0;
    const quint32 digits =
        exponent < 6 ? roundSmall(mantissa, binaryExponent, exponent) : roundLarge(value, exponent);
    if (digits == 1000000)
        return {100000, exponent + 1};
    return {digits, exponent};
}

/// \param text digits as characters, the first in the lowest byte
char *writeExponential(char *to, quint64 text, int count, int exponent)
{
    to[0] = static_cast<char>(text);
    to[1] = '.';
    store(to + 2, text >> 8);
    to += count > 1 ? count + 1 : 1;
    *to++ = 'e';
    *to++ = exponent < 0 ? '-' : '+';
    const int magnitude = exponent < 0 ? -exponent : exponent; // 22 at most
    *to++ = static_cast<char>('0' + magnitude / 10);
    *to++ = static_cast<char>('0' + magnitude % 10);
    return to;
}

char *writeRounded(char *to, Rounded number)
{
    const quint64 text = (eightDigits(number.digits) | zeros) >> 16;
    const int count = 8 - std::countl_zero(text ^ zeros >> 16) / 8; // without trailing zeros
    if (number.exponent >= 0 && number.exponent < 6) {
        const int whole = number.exponent + 1;
        store(to, text);
        to[whole] = '.';
        store(to + whole + 1, text >> (whole * 8));
        return to + (count > whole ? count + 1 : whole);
    }
    if (number.exponent < 0 && number.exponent >= -4) {
        store(to, zeros);
        to[1] = '.';
        to += 1 - number.exponent;
        store(to, text);
        return to + count;
    }
    return writeExponential(to, text, count, number.exponent);
}

char *writeByQt(char *to, double value)
{
    const QByteArray text = QString::number(value, 'g', 6).toLatin1();
    std::memcpy(to, text.constData(), static_cast<std::size_t>(text.size()));
    return to + text.size();
}

} // namespace

char *writeUnsigned(char *to, quint64 value)
{
    constexpr quint64 eight = 100000000;
    if (value < eight)
        return writeShort(to, static_cast<quint32>(value));
    const quint64 upper = value / eight;
    const auto lower = static_cast<quint32>(value % eight);
    if (upper < eight)
        return writeEight(writeShort(to, static_cast<quint32>(upper)), lower);
    to = writeShort(to, static_cast<quint32>(upper / eight));
    return writeEight(writeEight(to, static_cast<quint32>(upper % eight)), lower);
}

char *writeSigned(char *to, qint64 value)
{
    if (value >= 0)
        return writeUnsigned(to, static_cast<quint64>(value));
    *to = '-';
    return writeUnsigned(to + 1, quint64(0) - static_cast<quint64>(value));
}

char *writeReal(char *to, double value)
{
    if (value == 0.0) {
        *to = '0';
        return to + 1;
    }
    const auto bits = std::bit_cast<quint64>(value);
    const int binaryExponent = static_cast<int>(bits >> 52 & 0x7ff) - 1023;
    if (binaryExponent < lowestExponent || binaryExponent > highestExponent)
        return writeByQt(to, value);
    *to = '-';
    to += bits >> 63;
    constexpr quint64 hidden = quint64(1) << 52;
    const quint64 mantissa = (bits & (hidden - 1)) | hidden;
    const double magnitude = value < 0.0 ? -value : value;
    return writeRounded(to, roundToSix(magnitude, mantissa, binaryExponent));
}

} // namespace measurement::csv
