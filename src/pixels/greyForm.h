#pragma once

#include <array>

/**
 * The definition of a grey value, and numbers to reach it faster. For sources compiled without contraction of floating
 * point: a fused multiply-add changes the results.
 *
 * The integer part of the double sum is the integer sum divided by 1000, unless the integer sum is a multiple of 1000:
 * there rounding may leave the double sum just below the whole number, depending on the colour and not on the sum. So
 * the integer form does the work, and the double form is asked only where the integer sum is such a multiple.
 */
namespace GreyForm {

constexpr double Weight0 = 0.114;
constexpr double Weight1 = 0.587;
constexpr double Weight2 = 0.299;

constexpr int Integer0 = 114;
constexpr int Integer1 = 587;
constexpr int Integer2 = 299;

// A thousandth of a sum up to 255000: an eighth of it is below 2^15, and 33555 / 2^22 is just above 1 / 125.
constexpr int ThousandthFactor = 33555;
constexpr int ThousandthShift = 22;

/// The result as it is defined; the order of the terms matters.
constexpr int doubleForm(int s0, int s1, int s2)
{
    return static_cast<int>(Weight1 * s1 + Weight2 * s2 + Weight0 * s0);
}

/// The lower 128 pure greys and the upper ones.
using PureGreys = std::array<std::array<unsigned char, 16>, 2>;

/**
 * One bit for each pure grey (three equal bytes), whose sum is always a multiple: set where the result is one less.
 *
 * A colour whose sum is such a multiple and of whose bytes two are equal is a pure grey, too: the third's weight times
 * the difference would be a multiple of 1000, so the difference one of 500.
 */
constexpr PureGreys pureGreysBelow()
{
    PureGreys bits{};
    for (unsigned value = 0; value < 256; ++value) {
        const int grey = static_cast<int>(value);
        if (doubleForm(grey, grey, grey) != grey)
            bits[value / 128][value / 8 % 16] |= static_cast<unsigned char>(1U << value % 8);
    }
    return bits;
}

/// Eight bytes, the lowest first: the bit that stands for each of eight values beside each other.
constexpr long long PowersOfTwo = static_cast<long long>(0x8040201008040201ULL);

}  // namespace GreyForm
