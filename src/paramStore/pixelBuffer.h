#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

/**
 * The size and the samples of one picture record; private to the store library.
 *
 * The memory only grows: a picture that shrinks, or becomes empty for a while, keeps what it has, so that a stream of
 * pictures allocates nothing once its largest has been seen. That of a small picture begins with a line of the
 * processor's cache: threads that fill such pictures side by side must not want the same one.
 */
template <typename Sample>
class PixelBuffer
{
public:
    /// Takes on a size whose pictures have this many bytes; 0 bytes, or no memory for them, make it empty.
    void resize(int width, int height, std::int64_t bytes)
    {
        const bool fits = bytes > 0 && reserve(static_cast<std::size_t>(bytes) / sizeof(Sample));
        m_nWidth = fits ? width : 0;
        m_nHeight = fits ? height : 0;
    }

    Sample* samples() const { return m_nWidth > 0 ? m_pcSamples.get() : nullptr; }
    int width() const { return m_nWidth; }
    int height() const { return m_nHeight; }

private:
    bool reserve(std::size_t count)
    {
        if (count <= m_nCapacity)
            return true;
        // The old samples go first: nobody needs them, and two large pictures may not fit at once.
        m_nCapacity = 0;
        m_pcSamples.reset();
        // For an aligned piece malloc cuts off what lies in front of it, and for large pictures that would be memory
        // lost.
        const std::size_t bytes = count * sizeof(Sample);
        const std::align_val_t alignment{bytes <= SmallPicture ? CacheLine : alignof(Sample)};
        m_pcSamples = {static_cast<Sample*>(::operator new[](bytes, alignment, std::nothrow)), Deleter{alignment}};
        if (!m_pcSamples)
            return false;
        m_nCapacity = count;
        return true;
    }

    static constexpr std::size_t CacheLine = 64;             // bytes
    static constexpr std::size_t SmallPicture = 256 * 1024;  // bytes

    struct Deleter
    {
        std::align_val_t m_eAlignment{alignof(Sample)};
        void operator()(Sample* samples) const { ::operator delete[](samples, m_eAlignment); }
    };

    std::unique_ptr<Sample[], Deleter> m_pcSamples;
    std::size_t m_nCapacity = 0;  ///< Samples.
    int m_nWidth = 0;
    int m_nHeight = 0;
};
