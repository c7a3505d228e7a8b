#include "saving/saving.h"

#include "paramStore/arithmParamMgr.h"
#include "resultText.h"
#include "saving/pictureFile.h"
#include "saving/recordPicture.h"
#include "saving/savingCanvas.h"
#include "saving/savingName.h"
#include "saving/savingOption.h"

#include <QImage>

const char* Saving::s_ID = "KW_Saving";
thread_local std::unique_ptr<char[]> Saving::s_pchConfigStr;
thread_local int Saving::s_nBuffLen = 1024;

namespace {

QImage pictureOf(const SavingOption& option, const ArithmParamMgr* store)
{
    if (option.m_nWnd != SavingOption::RecordWnd)
        return SavingCanvas::copyOf(option.m_nWnd);
    return store ? RecordPicture::of(option, *store) : QImage();
}

}  // namespace

QString Saving::getName()
{
    return QStringLiteral("保存图像");
}

QString Saving::getClass()
{
    return QStringLiteral("系统");
}

const char* Saving::getID()
{
    return s_ID;
}

char* Saving::execute(char* option, ArithmParamMgr* store)
{
    const SavingOption saving = SavingOption::parse(QString::fromUtf8(option));
    const QString path = SavingName::nextPath(saving, store);
    PictureFile::write(pictureOf(saving, store), path);
    QString result;
    return transConfigStr(result);
}

char* Saving::transConfigStr(QString& text)
{
    return putResultText(s_pchConfigStr, s_nBuffLen, text);
}
