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

/// One bit for each pure grey (three equal bytes), whose sum is always a multiple: set where the result is one less.
constexpr std::array<unsigned char, 32> pureGreysBelow()
{
    std::array<unsigned char, 32> bits{};
    for (int value = 0; value < 256; ++value) {
        if (doubleForm(value, value, value) != value)
            bits[static_cast<unsigned>(value) / 8] |= static_cast<unsigned char>(1 << value % 8);
    }
    return bits;
}

}  // namespace GreyForm
