#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

/// Memory for pixels that is kept while it is large enough, so a stream of equal pictures allocates once.
class PictureBuffer
{
public:
    /// The content is unspecified afterwards. @return false when bytes is below 1 or there is no memory.
    bool resize(std::int64_t bytes)
    {
        if (bytes < 1)
            return false;
        if (bytes <= m_nCapacity)
            return true;
        m_nCapacity = 0;
        m_pchPixels.reset();  // first, so that both never exist at once
        m_pchPixels.reset(new (std::nothrow) unsigned char[static_cast<std::size_t>(bytes)]);
        if (m_pchPixels)
            m_nCapacity = bytes;
        return m_pchPixels != nullptr;
    }

    unsigned char* data() const { return m_pchPixels.get(); }

private:
    std::unique_ptr<unsigned char[]> m_pchPixels;
    std::int64_t m_nCapacity = 0;
};
