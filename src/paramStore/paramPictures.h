#pragma once

#include "arithmParam.h"

#include <cstdint>

template <typename Record>
class ParamTable;

/**
 * One colour picture: 3 bytes a pixel, rows padded to a multiple of 4 bytes (see pictureLayout.h).
 *
 * The byte order is blue, green, red where pictures are drawn or saved.
 * Threads: the pixels and the size belong to the thread that runs the task.
 */
class ARITHM_PARAM_API ParamDIB : public ArithmParam
{
public:
    /**
     * Makes the buffer hold height rows of colourStride(width) bytes.
     *
     * The buffer is kept when it is large enough, so a stream of equal pictures allocates once; its content after a
     * change of size is unspecified. A size below 1, one that does not fit the address space and one for which there
     * is no memory leave an empty picture (0 x 0, null buffer).
     */
    void resize(int width, int height);

    unsigned char* getDIB() const;  ///< The pixels; owned by the record; null while the picture is empty.
    int getWidth() const;           ///< Pixels; 0 for a new record.
    int getHeight() const;          ///< Pixels; 0 for a new record.

    /// Exchanges size and pixels with another record; identifier, name and description stay.
    void swapPixels(ParamDIB& other);

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamDIB(int id);
    ARITHM_PARAM_LOCAL ~ParamDIB();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamDIB>;
};

/// One 8-bit grey picture: one byte a pixel, rows not padded. Otherwise as ParamDIB.
class ARITHM_PARAM_API ParamGray8 : public ArithmParam
{
public:
    void resize(int width, int height);  ///< As ParamDIB::resize, width x height bytes.

    unsigned char* getGray8() const;  ///< The pixels; owned by the record; null while the picture is empty.
    int getWidth() const;
    int getHeight() const;

    void swapPixels(ParamGray8& other);  ///< As ParamDIB::swapPixels.

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamGray8(int id);
    ARITHM_PARAM_LOCAL ~ParamGray8();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamGray8>;
};

/// One 16-bit grey picture: one unsigned sample a pixel, rows not padded. Otherwise as ParamDIB.
class ARITHM_PARAM_API ParamGray16 : public ArithmParam
{
public:
    void resize(int width, int height);  ///< As ParamDIB::resize, width x height samples.

    std::uint16_t* getGray16() const;  ///< The samples; owned by the record; null while the picture is empty.
    int getWidth() const;
    int getHeight() const;

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamGray16(int id);
    ARITHM_PARAM_LOCAL ~ParamGray16();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamGray16>;
};
