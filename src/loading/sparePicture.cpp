#include "loading/sparePicture.h"

#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"

#include <malloc.h>

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr int SpareID = 1;
constexpr std::size_t Slack = 64 * 1024;  // bytes that are not worth a thought

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};

/// The pixels of a record's whole buffer, also where the record is empty at the moment; null for no record.
template <typename Record>
Record* shown(Record* record)
{
    if (record)
        record->resize(1, 1);
    return record;
}

/// The spare pictures of a thread, one of each kind; they live as long as it.
class Spares
{
public:
    ArithmParamMgr& store() { return *m_pcStore; }

    /// Notes what the next picture needs, and now and then lets go of what none of the last ones did.
    void expect(bool grey, std::int64_t bytes)
    {
        std::size_t& largest = m_anLargest.at(grey ? 1 : 0);
        largest = std::max(largest, static_cast<std::size_t>(bytes));
        if (++m_nPictures < SparePicture::LookEvery)
            return;
        letGoAbove(false, 2 * m_anLargest[0] + Slack);
        letGoAbove(true, 2 * m_anLargest[1] + Slack);
        m_nPictures = 0;
        m_anLargest = {};
    }

    void letGoAbove(bool grey, std::size_t most)
    {
        if (keptBytes(grey) <= most)
            return;
        if (grey)
            m_pcStore->removeParamGray8(SpareID);
        else
            m_pcStore->removeParamDIB(SpareID);
    }

    std::size_t keptBytes(bool grey) const
    {
        if (grey) {
            const ParamGray8* record = shown(m_pcStore->findParamGray8(SpareID));
            return record ? malloc_usable_size(record->getGray8()) : 0;
        }
        const ParamDIB* record = shown(m_pcStore->findParamDIB(SpareID));
        return record ? malloc_usable_size(record->getDIB()) : 0;
    }

private:
    const std::unique_ptr<ArithmParamMgr, StoreDeleter> m_pcStore{ArithmParamMgr::newInstance()};
    std::array<std::size_t, 2> m_anLargest{};  ///< Bytes of the largest coloured and grey picture since the last look.
    int m_nPictures = 0;                       ///< Since then.
};

Spares& spares()
{
    static thread_local Spares t_cSpares;
    return t_cSpares;
}

}  // namespace

std::size_t SparePicture::keptBytes(bool grey)
{
    return spares().keptBytes(grey);
}

SparePicture::SparePicture(bool grey) : m_bGrey(grey) {}

// Whether the picture was given away or its file turned out to be damaged.
SparePicture::~SparePicture()
{
    spares().letGoAbove(m_bGrey, MostKept);
}

bool SparePicture::resize(int width, int height)
{
    if (m_bGrey) {
        spares().expect(true, PictureLayout::gray8Bytes(width, height));
        ParamGray8* record = spares().store().getParamGray8(SpareID);
        record->resize(width, height);
        m_pcPixels = record->getGray8();
        m_nStride = static_cast<std::size_t>(width);
    } else {
        spares().expect(false, PictureLayout::colourBytes(width, height));
        ParamDIB* record = spares().store().getParamDIB(SpareID);
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
    record.swapPixels(*spares().store().getParamDIB(SpareID));
}

void SparePicture::giveTo(ParamGray8& record) const
{
    record.swapPixels(*spares().store().getParamGray8(SpareID));
}
