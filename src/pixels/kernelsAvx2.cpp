#include "pixels/kernels.h"

const PixelKernels* PixelKernels::avx2()
{
    return nullptr;
}
