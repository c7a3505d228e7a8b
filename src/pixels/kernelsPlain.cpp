// Compiled without contraction of floating point (see CMakeLists.txt).
#include "pixels/greyForm.h"
#include "pixels/kernels.h"

#include <cstring>

namespace {

using namespace GreyForm;

void exchange(const unsigned char* source, unsigned char* target, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, source += 3, target += 3) {
        const unsigned char first = source[0];
        target[0] = source[2];
        target[1] = source[1];
        target[2] = first;
    }
}

unsigned char greyOfPixel(int s0, int s1, int s2)
{
    const int sum = Integer1 * s1 + Integer2 * s2 + Integer0 * s0;
    const int value = ((sum >> 3) * ThousandthFactor) >> ThousandthShift;
    if (__builtin_expect(value * 1000 == sum, 0))  // a hint: otherwise compilers evaluate both forms always
        return static_cast<unsigned char>(doubleForm(s0, s1, s2));
    return static_cast<unsigned char>(value);
}

void greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, rgb += 3)
        grey[i] = greyOfPixel(rgb[0], rgb[1], rgb[2]);
}

void greyOfBgrx(const unsigned char* bgrx, unsigned char* grey, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, bgrx += 4)
        grey[i] = greyOfPixel(bgrx[2], bgrx[1], bgrx[0]);
}

void rgbOfBgrx(const unsigned char* bgrx, unsigned char* rgb, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, bgrx += 4, rgb += 3) {
        rgb[0] = bgrx[2];
        rgb[1] = bgrx[1];
        rgb[2] = bgrx[0];
    }
}

void rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, rgb += 3)
        std::memset(rgb, grey[i], 3);
}

}  // namespace

const PixelKernels& PixelKernels::plain()
{
    static constexpr PixelKernels kernels{"plain", exchange, greyOfRgb, greyOfBgrx, rgbOfBgrx, rgbOfGrey};
    return kernels;
}
