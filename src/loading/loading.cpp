#include "loading/loading.h"

#include "loading/directReader.h"
#include "loading/loadingOption.h"
#include "loading/pictureConvert.h"
#include "loading/pictureReader.h"
#include "loading/sparePicture.h"
#include "paramStore/arithmParamMgr.h"
#include "resultText.h"

#include <QImage>

const char* Loading::s_ID = "KW_Loading";
thread_local std::unique_ptr<char[]> Loading::s_pchConfigStr;
thread_local int Loading::s_nBuffLen = 1024;

namespace {

/// The record that the picture goes into, with its name and description.
template <typename Record>
Record* named(Record* record, const LoadingOption& option)
{
    if (record) {
        record->setName(option.m_strOutputName);
        record->setDescribe(option.m_strDescribe);
    }
    return record;
}

ParamGray8* greyRecord(const LoadingOption& option, ArithmParamMgr& store)
{
    return named(store.getParamGray8(option.recordID()), option);
}

ParamDIB* colourRecord(const LoadingOption& option, ArithmParamMgr& store)
{
    return named(store.getParamDIB(option.recordID()), option);
}

/// Straight from the file; false when Qt has to decode it.
bool loadDirectly(const LoadingOption& option, ArithmParamMgr& store)
{
    SparePicture picture(option.m_bGrey);
    if (!DirectReader::read(option.m_strFilePath, picture))
        return false;
    if (option.m_bGrey) {
        if (ParamGray8* record = greyRecord(option, store))
            picture.giveTo(*record);
    } else if (ParamDIB* record = colourRecord(option, store)) {
        picture.giveTo(*record);
    }
    return true;
}

void loadByQt(const LoadingOption& option, ArithmParamMgr& store)
{
    const QImage picture = PictureReader::read(option.m_strFilePath);
    if (picture.isNull())
        return;
    if (option.m_bGrey) {
        ParamGray8* record = greyRecord(option, store);
        if (record)
            record->resize(picture.width(), picture.height());
        if (record && record->getWidth() > 0)
            PictureConvert::copyAsGrey(picture, record->getGray8());
        return;
    }
    ParamDIB* record = colourRecord(option, store);
    if (record)
        record->resize(picture.width(), picture.height());
    if (record && record->getWidth() > 0)
        PictureConvert::copyAsColour(picture, record->getDIB());
}

void load(const LoadingOption& option, ArithmParamMgr& store)
{
    if (!loadDirectly(option, store))
        loadByQt(option, store);
}

}  // namespace

QString Loading::getName()
{
    return QStringLiteral("加载图像");
}

QString Loading::getClass()
{
    return QStringLiteral("系统");
}

const char* Loading::getID()
{
    return s_ID;
}

char* Loading::execute(char* option, ArithmParamMgr* store)
{
    if (store)
        load(LoadingOption::parse(QString::fromUtf8(option)), *store);
    QString result;
    return transConfigStr(result);
}

char* Loading::transConfigStr(QString& text)
{
    return putResultText(s_pchConfigStr, s_nBuffLen, text);
}
