#include "pixels/kernels.h"

const PixelKernels* PixelKernels::neon()
{
    return nullptr;
}
