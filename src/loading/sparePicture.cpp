#include "loading/sparePicture.h"

#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"

#include <memory>

namespace {

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};

/// Lives as long as its thread.
ArithmParamMgr& spareStore()
{
    static thread_local const std::unique_ptr<ArithmParamMgr, StoreDeleter> store(ArithmParamMgr::newInstance());
    return *store;
}

constexpr int SpareID = 1;

}  // namespace

SparePicture::SparePicture(bool grey) : m_bGrey(grey) {}

bool SparePicture::resize(int width, int height)
{
    if (m_bGrey) {
        ParamGray8* record = spareStore().getParamGray8(SpareID);
        record->resize(width, height);
        m_pcPixels = record->getGray8();
        m_nStride = static_cast<std::size_t>(width);
    } else {
        ParamDIB* record = spareStore().getParamDIB(SpareID);
        record->resize(width, height);
        m_pcPixels = record->getDIB();
        m_nStride = static_cast<std::size_t>(PictureLayout::colourStride(width));
    }
    return m_pcPixels != nullptr;
}

PictureConvert::RowOperation SparePicture::operation(QImage::Format format) const
{
    return m_bGrey ? PictureConvert::greyOperation(format) : PictureConvert::colourOperation(format);
}

void SparePicture::giveTo(ParamDIB& record) const
{
    record.swapPixels(*spareStore().getParamDIB(SpareID));
}

void SparePicture::giveTo(ParamGray8& record) const
{
    record.swapPixels(*spareStore().getParamGray8(SpareID));
}
