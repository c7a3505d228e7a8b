#include "neon.h"
#include "pixels/samplingKernels.h"

#if defined(HAS_NEON)

namespace {

// Three bytes here and three bytes there: nothing to gain for this unit, which gathers nothing.
void colour(const unsigned char* row, const ColumnMap& map, bool exchange, unsigned char* target)
{
    SamplingKernels::plainColourFrom(0, row, map, exchange, target);
}

NEON void grey(const unsigned char* row, const ColumnMap& map, unsigned char* target)
{
    std::size_t done = 0;
    for (const ColumnMap::Window& window : map.windows()) {
        const unsigned char* first = row + window.m_nFirst;
        const uint8x8x2_t sixteen = {{vld1_u8(first), vld1_u8(first + 8)}};
        vst1_u8(target + done, vtbl2_u8(sixteen, vld1_u8(window.m_anPlaces.data())));
        done += ColumnMap::WindowColumns;
    }
    SamplingKernels::plainGreyFrom(done, row, map, target);
}

NEON void overlay(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
                  std::size_t count)
{
    constexpr std::size_t Step = 16;  // pixels
    const uint8x16_t inverted = vdupq_n_u8(whereZero ? 0 : 0xFF);
    for (; count >= Step; count -= Step, grey += Step, rgb += 3 * Step, target += 3 * Step) {
        const uint8x16_t taken = veorq_u8(vceqq_u8(vld1q_u8(grey), vdupq_n_u8(0)), inverted);
        const uint8x16x3_t over = vld3q_u8(rgb);
        uint8x16x3_t pixels = vld3q_u8(target);
        pixels.val[0] = vbslq_u8(taken, over.val[0], pixels.val[0]);
        pixels.val[1] = vbslq_u8(taken, over.val[1], pixels.val[1]);
        pixels.val[2] = vbslq_u8(taken, over.val[2], pixels.val[2]);
        vst3q_u8(target, pixels);
    }
    SamplingKernels::plain().m_pfnOverlay(grey, rgb, whereZero, target, count);
}

}  // namespace

const SamplingKernels* SamplingKernels::neon()
{
    static const SamplingKernels kernels{"neon", colour, grey, overlay, plain().m_pfnLookUp};
    return processorHasNeon() ? &kernels : nullptr;
}

#else

const SamplingKernels* SamplingKernels::neon()
{
    return nullptr;
}

#endif
