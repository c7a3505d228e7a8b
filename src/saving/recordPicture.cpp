#include "saving/recordPicture.h"

#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"
#include "pixels/pixels.h"
#include "saving/savingOption.h"

#include <QImage>

#include <cstring>

namespace {

QImage colourPicture(const ParamDIB* record)
{
    if (!record || !record->getDIB())
        return {};
    const int width = record->getWidth();
    const int height = record->getHeight();
    const auto stride = static_cast<int>(PictureLayout::colourStride(width));
    for (int y = 0; y < height; ++y) {
        unsigned char* row = record->getDIB() + static_cast<std::ptrdiff_t>(stride) * y;
        Pixels::exchangeFirstAndThird(row, row, static_cast<std::size_t>(width));
    }
    return QImage(record->getDIB(), width, height, stride, QImage::Format_RGB888);
}

QVector<QRgb> makeGreyRamp()
{
    QVector<QRgb> ramp;
    for (QRgb value = 0; value < 256; ++value)
        ramp.append(0xFF000000U + value * 0x010101U);
    return ramp;
}

/// Rows padded to a multiple of 4 bytes, which Qt's bitmap writer reads whatever the picture says.
QImage paddedCopy(const unsigned char* grey, int width, int height)
{
    QImage copy(width, height, QImage::Format_Indexed8);
    const auto rowBytes = static_cast<std::size_t>(width);
    for (int y = 0; !copy.isNull() && y < height; ++y)
        std::memcpy(copy.scanLine(y), grey + rowBytes * static_cast<std::size_t>(y), rowBytes);
    return copy;
}

QImage greyPicture(const ParamGray8* record)
{
    if (!record || !record->getGray8())
        return {};
    static const QVector<QRgb> ramp = makeGreyRamp();
    const int width = record->getWidth();
    const int height = record->getHeight();
    QImage picture = width % 4 == 0 ? QImage(record->getGray8(), width, height, width, QImage::Format_Indexed8)
                                    : paddedCopy(record->getGray8(), width, height);
    picture.setColorTable(ramp);
    return picture;
}

}  // namespace

QImage RecordPicture::of(const SavingOption& option, const ArithmParamMgr& store)
{
    const int id = option.recordID();
    if (id < 0)
        return {};
    if (option.m_strPicType == QLatin1String("RGB"))
        return colourPicture(store.findParamDIB(id));
    if (option.m_strPicType == QLatin1String("Gray"))
        return greyPicture(store.findParamGray8(id));
    return {};
}
