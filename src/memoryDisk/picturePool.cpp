#include "memoryDisk/picturePool.h"

#include "pixels/pixels.h"

#include <new>

bool PictureSlot::store(const unsigned char* data, std::int64_t bytes, int width, int height)
{
    if (bytes > m_nCapacity) {
        m_pchPixels.reset();
        m_pchPixels.reset(new (std::nothrow) unsigned char[static_cast<std::size_t>(bytes)]);
        m_nCapacity = m_pchPixels ? bytes : 0;
    }
    const bool fits = m_pchPixels != nullptr;
    m_nWidth = fits ? width : 0;
    m_nHeight = fits ? height : 0;
    if (fits)
        Pixels::copyPictureAside(data, m_pchPixels.get(), static_cast<std::size_t>(bytes));
    return fits;
}
