#include "loading/loadingOption.h"

#include "optionText.h"

LoadingOption LoadingOption::parse(const QString& text)
{
    const OptionReader reader(text);
    LoadingOption option;
    option.m_strFilePath = reader.text("FilePath");
    option.m_strOutputName = reader.text("OutputName");
    option.m_strDescribe = reader.text("Describe");
    option.m_bGrey = reader.numberOrZero("BeGray") == 1;
    option.m_nPicType = reader.numberOrZero("PicType");
    option.m_nPicID = reader.number("PicID");
    return option;
}

QString LoadingOption::text() const
{
    return OptionWriter()
        .text("FilePath", m_strFilePath)
        .text("OutputName", m_strOutputName)
        .text("Describe", m_strDescribe)
        .number("BeGray", m_bGrey ? 1 : 0)
        .number("PicType", m_nPicType)
        .number("PicID", dialogID())
        .result();
}
