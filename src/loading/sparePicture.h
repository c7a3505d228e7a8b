#pragma once

#include "loading/pictureConvert.h"

#include <QImage>

#include <cstddef>

class ParamDIB;
class ParamGray8;

/**
 * A picture of the calling thread's own, laid out as a record's, into which a file is decoded row by row: the record
 * gets it when it is whole, and is as it was when the file turns out to be damaged.
 *
 * The pixels are exchanged with the record's, so that a stream of pictures neither copies nor allocates. Only one at a
 * time in each thread.
 *
 * What a thread keeps for its next picture is let go when it is above MostKept, and when it is more than twice as large
 * as any of the thread's last pictures: one huge picture must not take the memory of a small board for weeks.
 */
class SparePicture
{
public:
    static constexpr std::size_t MostKept = std::size_t{64} << 20;  ///< Bytes of one kind: 22 million coloured pixels.

    /// After so many pictures a thread looks at what it keeps. Odd, because the record's pixels and the spare ones take
    /// turns, and both are to be seen.
    static constexpr int LookEvery = 31;

    /// Bytes that the calling thread keeps for its next picture of a kind; their content is lost. For tests.
    static std::size_t keptBytes(bool grey);

    explicit SparePicture(bool grey);
    ~SparePicture();
    SparePicture(const SparePicture&) = delete;
    SparePicture& operator=(const SparePicture&) = delete;

    bool isGrey() const { return m_bGrey; }

    /// False when there is no memory. What the picture held before is lost.
    bool resize(int width, int height);

    unsigned char* row(int y) const { return m_pcPixels + m_nStride * static_cast<std::size_t>(y); }

    /// What makes a row of this picture from a decoded row; null for formats that Qt has to convert.
    PictureConvert::RowOperation operation(QImage::Format format) const;

    // For a picture that was made grey or not, as the record is.
    void giveTo(ParamDIB& record) const;
    void giveTo(ParamGray8& record) const;

private:
    bool m_bGrey;
    unsigned char* m_pcPixels = nullptr;  ///< Not owned.
    std::size_t m_nStride = 0;            ///< Bytes.
};
