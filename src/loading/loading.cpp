#include "loading/loading.h"

#include "loading/loadingOption.h"
#include "loading/pictureConvert.h"
#include "loading/pictureReader.h"
#include "paramStore/arithmParamMgr.h"
#include "resultText.h"

#include <QImage>

const char* Loading::s_ID = "KW_Loading";
thread_local std::unique_ptr<char[]> Loading::s_pchConfigStr;
thread_local int Loading::s_nBuffLen = 1024;

namespace {

/// Gives a record the name, description and size of the loaded picture; false when there is no memory for it.
template <typename Record>
bool prepare(Record& record, const LoadingOption& option, const QImage& picture)
{
    record.setName(option.m_strOutputName);
    record.setDescribe(option.m_strDescribe);
    record.resize(picture.width(), picture.height());
    return record.getWidth() > 0;
}

void storeAsGrey(const LoadingOption& option, const QImage& picture, ArithmParamMgr& store)
{
    ParamGray8* record = store.getParamGray8(option.recordID());
    if (record && prepare(*record, option, picture))
        PictureConvert::copyAsGrey(picture, record->getGray8());
}

void storeAsColour(const LoadingOption& option, const QImage& picture, ArithmParamMgr& store)
{
    ParamDIB* record = store.getParamDIB(option.recordID());
    if (record && prepare(*record, option, picture))
        PictureConvert::copyAsColour(picture, record->getDIB());
}

void load(const LoadingOption& option, ArithmParamMgr& store)
{
    const QImage picture = PictureReader::read(option.m_strFilePath);
    if (picture.isNull())
        return;
    if (option.m_bGrey)
        storeAsGrey(option, picture, store);
    else
        storeAsColour(option, picture, store);
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
