#include "pixels/pixels.h"

#include "pixels/kernels.h"

namespace {

const PixelKernels& best()
{
    static const PixelKernels& kernels = *PixelKernels::available().back();
    return kernels;
}

}  // namespace

std::vector<const PixelKernels*> PixelKernels::available()
{
    std::vector<const PixelKernels*> all{&plain()};
    for (const PixelKernels* kernels : {ssse3(), avx2(), avx512(), neon()}) {
        if (kernels)
            all.push_back(kernels);
    }
    return all;
}

void Pixels::exchangeFirstAndThird(const unsigned char* source, unsigned char* target, std::size_t count)
{
    best().m_pfnExchange(source, target, count);
}

void Pixels::greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    best().m_pfnGreyOfRgb(rgb, grey, count);
}

void Pixels::greyOfBgrx(const unsigned char* bgrx, unsigned char* grey, std::size_t count)
{
    best().m_pfnGreyOfBgrx(bgrx, grey, count);
}

void Pixels::rgbOfBgrx(const unsigned char* bgrx, unsigned char* rgb, std::size_t count)
{
    best().m_pfnRgbOfBgrx(bgrx, rgb, count);
}

void Pixels::rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count)
{
    best().m_pfnRgbOfGrey(grey, rgb, count);
}
