// Sixteen pixels at a time. Compiled without contraction of floating point (see CMakeLists.txt).
#include "neon.h"
#include "pixels/greyForm.h"
#include "pixels/kernels.h"

#if defined(HAS_NEON)

namespace {

using namespace GreyForm;

constexpr std::size_t Step = 16;  // pixels

NEON void exchange(const unsigned char* source, unsigned char* target, std::size_t count)
{
    for (; count >= Step; count -= Step, source += 3 * Step, target += 3 * Step) {
        const uint8x16x3_t pixels = vld3q_u8(source);
        const uint8x16x3_t exchanged = {{pixels.val[2], pixels.val[1], pixels.val[0]}};
        vst3q_u8(target, exchanged);
    }
    PixelKernels::plain().m_pfnExchange(source, target, count);
}

NEON void rgbOfBgrx(const unsigned char* bgrx, unsigned char* rgb, std::size_t count)
{
    for (; count >= Step; count -= Step, bgrx += 4 * Step, rgb += 3 * Step) {
        const uint8x16x4_t pixels = vld4q_u8(bgrx);
        const uint8x16x3_t packed = {{pixels.val[2], pixels.val[1], pixels.val[0]}};
        vst3q_u8(rgb, packed);
    }
    PixelKernels::plain().m_pfnRgbOfBgrx(bgrx, rgb, count);
}

NEON void rgbOfGrey(const unsigned char* grey, unsigned char* rgb, std::size_t count)
{
    for (; count >= Step; count -= Step, grey += Step, rgb += 3 * Step) {
        const uint8x16_t values = vld1q_u8(grey);
        const uint8x16x3_t spread = {{values, values, values}};
        vst3q_u8(rgb, spread);
    }
    PixelKernels::plain().m_pfnRgbOfGrey(grey, rgb, count);
}

/// Four thousandths; multiples gets more bits for each sum that is a multiple of 1000.
NEON uint16x4_t thousandths(uint16x4_t s0, uint16x4_t s1, uint16x4_t s2, uint32x4_t& multiples)
{
    uint32x4_t sums = vmull_n_u16(s1, Integer1);
    sums = vmlal_n_u16(sums, s2, Integer2);
    sums = vmlal_n_u16(sums, s0, Integer0);
    const uint32x4_t values = vshrq_n_u32(vmull_n_u16(vshrn_n_u32(sums, 3), ThousandthFactor), ThousandthShift);
    multiples = vorrq_u32(multiples, vceqq_u32(vmulq_n_u32(values, 1000), sums));
    return vmovn_u32(values);
}

NEON uint8x8_t greyOfEight(uint8x8_t s0, uint8x8_t s1, uint8x8_t s2, uint32x4_t& multiples)
{
    const uint16x8_t wide0 = vmovl_u8(s0);
    const uint16x8_t wide1 = vmovl_u8(s1);
    const uint16x8_t wide2 = vmovl_u8(s2);
    const uint16x4_t lower = thousandths(vget_low_u16(wide0), vget_low_u16(wide1), vget_low_u16(wide2), multiples);
    const uint16x4_t upper = thousandths(vget_high_u16(wide0), vget_high_u16(wide1), vget_high_u16(wide2), multiples);
    return vmovn_u16(vcombine_u16(lower, upper));
}

/// Sixteen grey values; false when some of them need the double form, which this unit does not have.
NEON bool greyOf(uint8x16_t s0, uint8x16_t s1, uint8x16_t s2, unsigned char* grey)
{
    uint32x4_t multiples = vdupq_n_u32(0);
    const uint8x8_t lower = greyOfEight(vget_low_u8(s0), vget_low_u8(s1), vget_low_u8(s2), multiples);
    const uint8x8_t upper = greyOfEight(vget_high_u8(s0), vget_high_u8(s1), vget_high_u8(s2), multiples);
    const uint32x2_t any = vorr_u32(vget_low_u32(multiples), vget_high_u32(multiples));
    if ((vget_lane_u32(any, 0) | vget_lane_u32(any, 1)) != 0)
        return false;
    vst1q_u8(grey, vcombine_u8(lower, upper));
    return true;
}

NEON void greyOfRgb(const unsigned char* rgb, unsigned char* grey, std::size_t count)
{
    const PixelKernels::Operation exact = PixelKernels::plain().m_pfnGreyOfRgb;
    for (; count >= Step; count -= Step, rgb += 3 * Step, grey += Step) {
        const uint8x16x3_t pixels = vld3q_u8(rgb);
        if (!greyOf(pixels.val[0], pixels.val[1], pixels.val[2], grey))
            exact(rgb, grey, Step);
    }
    exact(rgb, grey, count);
}

NEON void greyOfBgrx(const unsigned char* bgrx, unsigned char* grey, std::size_t count)
{
    const PixelKernels::Operation exact = PixelKernels::plain().m_pfnGreyOfBgrx;
    for (; count >= Step; count -= Step, bgrx += 4 * Step, grey += Step) {
        const uint8x16x4_t pixels = vld4q_u8(bgrx);
        if (!greyOf(pixels.val[2], pixels.val[1], pixels.val[0], grey))
            exact(bgrx, grey, Step);
    }
    exact(bgrx, grey, count);
}

}  // namespace

const PixelKernels* PixelKernels::neon()
{
    static constexpr PixelKernels kernels{"neon", exchange, greyOfRgb, greyOfBgrx, rgbOfBgrx, rgbOfGrey};
    return processorHasNeon() ? &kernels : nullptr;
}

#else

const PixelKernels* PixelKernels::neon()
{
    return nullptr;
}

#endif
