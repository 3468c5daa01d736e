#pragma once

#include <QtGlobal>

#include <cstddef>

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

} // namespace measurement::csv
