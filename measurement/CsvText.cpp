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
constexpr auto powersOfTen = powersOf<20>(10);

constexpr quint64 eightPlaces = powersOfTen[8];

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

/// Of eight characters. The last one does not count, even if it is 0.
int leadingZeros(quint64 characters)
{
    return std::countr_zero((characters ^ zeros) | quint64(1) << 56) / 8;
}

/// Without leading zeros; a number below 10^8.
char *writeShort(char *to, quint32 value)
{
    const quint64 characters = eightDigits(value) | zeros;
    const int skipped = leadingZeros(characters);
    store(to, characters >> (skipped * 8));
    return to + (8 - skipped);
}

char *writeEight(char *to, quint32 value)
{
    store(to, eightDigits(value) | zeros);
    return to + 8;
}

/// The characters of 000 to 999, the first in the lowest byte.
constexpr std::array<quint32, 1000> threeDigits = [] {
    std::array<quint32, 1000> texts = {};
    for (quint32 i = 0; i < texts.size(); ++i)
        texts[i] = (i / 100 | (i / 10 % 10) << 8 | (i % 10) << 16) | 0x303030;
    return texts;
}();

/// The characters of a number from 100000 to 999999.
quint64 sixDigits(quint32 value)
{
    return threeDigits[value / 1000] | static_cast<quint64>(threeDigits[value % 1000]) << 24;
}

/// The last digit that is not 0, counted from 0; of characters from sixDigits().
unsigned int lastSignificant(quint64 characters)
{
    return static_cast<unsigned int>(63 - std::countl_zero((characters ^ zeros >> 16) | 1)) / 8;
}

/// How the real numbers of one decade within one binade are written.
struct Decade
{
    quint64 factor; ///< makes six whole digits of the value's mantissa
    int exponent;
    bool isFixed;     ///< in the notation without an exponent, for which the rest is
    quint8 wholeBits; ///< 8 for each digit before the point
    quint8 point;
    quint8 fraction; ///< where the digits behind the point go, after zeros perhaps
    quint8 ends[6];  ///< by lastSignificant()
};

/// The numbers between two powers of two. They belong to one decade or to two.
struct alignas(64) Binade
{
    quint64 next; ///< bits of the first value that is rounded to the second decade
    Decade decades[2];
};

/// The binary exponents of numbers that are formatted here. Smaller ones are
/// rare enough to be left to Qt; their power of five would not fit an integer.
constexpr int lowestExponent = -70;
constexpr int highestExponent = 19;

constexpr int exponentBias = 1023;
constexpr quint64 hiddenBit = quint64(1) << 52; // where the biased exponent begins

/// The value's six digits, which may be 1000000.
/// \param bits of a value in the binade for which the factor is
constexpr quint32 roundToSix(quint64 bits, quint64 factor)
{
    const quint64 mantissa = (bits | hiddenBit) << 11;
    // 107 binary places. The 64 cut off first make no half of anything less.
    const auto upper = static_cast<quint64>(static_cast<Wide>(mantissa) * factor >> 64);
    return static_cast<quint32>(((upper >> 42) + 1) >> 1);
}

constexpr Decade decadeAt(int binaryExponent, int exponent)
{
    Decade decade = {};
    // 10^(5 - exponent), exactly: a power of ten is one of five, shifted. It fits,
    // because the product has six whole digits.
    const int scale = 5 - exponent;
    if (scale >= 0)
        decade.factor = powersOfFive[static_cast<std::size_t>(scale)] << (binaryExponent + scale + 44);
    decade.exponent = exponent;
    decade.isFixed = exponent >= -4 && exponent <= 5;
    if (!decade.isFixed)
        return decade;
    const int whole = exponent < 0 ? 0 : exponent + 1;
    const int fraction = exponent < 0 ? 1 - exponent : exponent + 2;
    decade.wholeBits = static_cast<quint8>(whole * 8);
    decade.point = static_cast<quint8>(exponent < 0 ? 1 : whole);
    decade.fraction = static_cast<quint8>(fraction);
    for (int last = 0; last < 6; ++last)
        decade.ends[last] = static_cast<quint8>(last < whole ? whole : fraction + last + 1 - whole);
    return decade;
}

/// The decade of a power of two.
constexpr int decadeOf(int binaryExponent)
{
    return (binaryExponent * 1233) >> 12; // log10(2), close enough here
}

constexpr std::array<Binade, highestExponent - lowestExponent + 1> binades = [] {
    std::array<Binade, highestExponent - lowestExponent + 1> table = {};
    quint64 first = (exponentBias + lowestExponent) * hiddenBit;
    int binaryExponent = lowestExponent;
    for (Binade &binade : table) {
        const int exponent = decadeOf(binaryExponent);
        binade = {0, {decadeAt(binaryExponent, exponent), decadeAt(binaryExponent, exponent + 1)}};
        // Numbers a little below a power of ten are rounded up to it.
        quint64 below = first - 1;
        binade.next = first + hiddenBit;
        while (binade.next - below > 1) {
            const quint64 middle = below + (binade.next - below) / 2;
            (roundToSix(middle, binade.decades[0].factor) < 1000000 ? below : binade.next) = middle;
        }
        first += hiddenBit;
        ++binaryExponent;
    }
    return table;
}();

/// \param digits as characters, see sixDigits()
char *writeExponential(char *to, quint64 digits, int exponent)
{
    const unsigned int last = lastSignificant(digits);
    to[0] = static_cast<char>(digits);
    to[1] = '.';
    store(to + 2, digits >> 8);
    to += last > 0 ? last + 2 : 1;
    *to++ = 'e';
    *to++ = exponent < 0 ? '-' : '+';
    const int magnitude = exponent < 0 ? -exponent : exponent; // 22 at most
    *to++ = static_cast<char>('0' + magnitude / 10);
    *to++ = static_cast<char>('0' + magnitude % 10);
    return to;
}

/// \param value from 999999.5 to below 2^63
char *writeLarge(char *to, double value)
{
    std::size_t exponent = 6;
    while (exponent < 18 && value >= static_cast<double>(powersOfTen[exponent + 1]))
        ++exponent;
    // Half a unit is a whole number here, so the value's fraction is irrelevant.
    const quint64 unit = powersOfTen[exponent - 5];
    const auto digits = static_cast<quint32>((static_cast<quint64>(value) + unit / 2) / unit);
    if (digits == 1000000)
        return writeExponential(to, sixDigits(100000), static_cast<int>(exponent) + 1);
    return writeExponential(to, sixDigits(digits), static_cast<int>(exponent));
}

/// Apart, so that it takes no registers from the usual numbers.
[[gnu::noinline]] char *writeUnusual(char *to, double value)
{
    if (value == 0.0) {
        *to = '0';
        return to + 1;
    }
    if (value < 0.0) {
        *to = '-';
        return writeReal(to + 1, -value);
    }
    if (value >= 999999.5 && value < 0x1p63)
        return writeLarge(to, value);
    const QByteArray text = QString::number(value, 'g', 6).toLatin1();
    std::memcpy(to, text.constData(), static_cast<std::size_t>(text.size()));
    return to + text.size();
}

} // namespace

char *writeUnsigned(char *to, quint64 value)
{
    if (value < eightPlaces)
        return writeShort(to, static_cast<quint32>(value));
    const quint64 upper = value / eightPlaces;
    const auto lower = static_cast<quint32>(value % eightPlaces);
    if (upper < eightPlaces)
        return writeEight(writeShort(to, static_cast<quint32>(upper)), lower);
    to = writeShort(to, static_cast<quint32>(upper / eightPlaces));
    return writeEight(writeEight(to, static_cast<quint32>(upper % eightPlaces)), lower);
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
    const auto bits = std::bit_cast<quint64>(value);
    const quint64 index = bits / hiddenBit - (exponentBias + lowestExponent);
    if (index >= binades.size())
        return writeUnusual(to, value);
    const Binade &binade = binades[index];
    const Decade &decade = binade.decades[bits >= binade.next ? 1 : 0];
    const quint64 text = sixDigits(roundToSix(bits, decade.factor));
    if (!decade.isFixed)
        return decade.exponent < 0 ? writeExponential(to, text, decade.exponent) : writeUnusual(to, value);
    // Without a branch on the place of the point: a level that hovers around a
    // power of ten would often take the unexpected one.
    store(to, decade.wholeBits == 0 ? zeros : text);
    to[decade.point] = '.';
    store(to + decade.fraction, text >> decade.wholeBits);
    return to + decade.ends[lastSignificant(text)];
}

DecimalCounter::Step DecimalCounter::stepOf(quint64 difference)
{
    if (difference >= eightPlaces)
        return tooLarge;
    const quint64 digits = __builtin_bswap64(eightDigits(static_cast<quint32>(difference)));
    return digits + inEveryByte(excess - '0');
}

void DecimalCounter::set(quint64 value)
{
    const quint64 upper = value / eightPlaces;
    const quint64 characters = eightDigits(static_cast<quint32>(value % eightPlaces)) | zeros;
    m_lower = __builtin_bswap64(characters);
    if (upper == 0) {
        const int skipped = leadingZeros(characters);
        m_shift = skipped * 8;
        m_upperSize = 0;
        m_size = 8 - skipped;
        // Where a digit more is needed; with eight of them, at the carry.
        m_limit = skipped == 0 ? ~quint64(0) : inEveryByte('0') + (quint64(1) << (m_size * 8));
        return;
    }
    char text[textRoom];
    m_upperSize = writeUnsigned(text, upper) - text;
    std::memcpy(m_upper, text, sizeof(m_upper));
    m_shift = 0;
    m_size = m_upperSize + 8;
    // The longest numbers may exceed 64 bits without a carry here.
    m_limit = m_size == static_cast<std::ptrdiff_t>(longestInteger) ? 0 : ~quint64(0);
}

} // namespace measurement::csv
