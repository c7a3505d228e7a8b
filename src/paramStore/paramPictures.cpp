#include "paramPictures.h"

#include "paramData.h"
#include "pictureLayout.h"
#include "pixelBuffer.h"

#include <utility>

// Colour pictures.

struct ARITHM_PARAM_LOCAL ParamDIB::Data : Private
{
    using Private::Private;
    PixelBuffer<unsigned char> m_cPixels;
};

ParamDIB::ParamDIB(int id) : ArithmParam(new Data(id)) {}

ParamDIB::~ParamDIB() = default;

ParamDIB::Data* ParamDIB::data() const
{
    return static_cast<Data*>(m_pcData);
}

void ParamDIB::resize(int width, int height)
{
    data()->m_cPixels.resize(width, height, PictureLayout::colourBytes(width, height));
}

unsigned char* ParamDIB::getDIB() const
{
    return data()->m_cPixels.samples();
}

int ParamDIB::getWidth() const
{
    return data()->m_cPixels.width();
}

int ParamDIB::getHeight() const
{
    return data()->m_cPixels.height();
}

void ParamDIB::swapPixels(ParamDIB& other)
{
    std::swap(data()->m_cPixels, other.data()->m_cPixels);
}

// 8-bit grey pictures.

struct ARITHM_PARAM_LOCAL ParamGray8::Data : Private
{
    using Private::Private;
    PixelBuffer<unsigned char> m_cPixels;
};

ParamGray8::ParamGray8(int id) : ArithmParam(new Data(id)) {}

ParamGray8::~ParamGray8() = default;

ParamGray8::Data* ParamGray8::data() const
{
    return static_cast<Data*>(m_pcData);
}

void ParamGray8::resize(int width, int height)
{
    data()->m_cPixels.resize(width, height, PictureLayout::gray8Bytes(width, height));
}

unsigned char* ParamGray8::getGray8() const
{
    return data()->m_cPixels.samples();
}

int ParamGray8::getWidth() const
{
    return data()->m_cPixels.width();
}

int ParamGray8::getHeight() const
{
    return data()->m_cPixels.height();
}

void ParamGray8::swapPixels(ParamGray8& other)
{
    std::swap(data()->m_cPixels, other.data()->m_cPixels);
}

// 16-bit grey pictures.

struct ARITHM_PARAM_LOCAL ParamGray16::Data : Private
{
    using Private::Private;
    PixelBuffer<std::uint16_t> m_cPixels;
};

ParamGray16::ParamGray16(int id) : ArithmParam(new Data(id)) {}

ParamGray16::~ParamGray16() = default;

ParamGray16::Data* ParamGray16::data() const
{
    return static_cast<Data*>(m_pcData);
}

void ParamGray16::resize(int width, int height)
{
    data()->m_cPixels.resize(width, height, PictureLayout::gray16Bytes(width, height));
}

std::uint16_t* ParamGray16::getGray16() const
{
    return data()->m_cPixels.samples();
}

int ParamGray16::getWidth() const
{
    return data()->m_cPixels.width();
}

int ParamGray16::getHeight() const
{
    return data()->m_cPixels.height();
}
