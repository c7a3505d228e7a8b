#include "saving/savingOption.h"

#include "optionText.h"

SavingOption SavingOption::parse(const QString& text)
{
    const OptionReader reader(text);
    SavingOption option;
    option.m_strBasePath = reader.text("BasePath");
    option.m_strStringID = reader.text("StringID");
    option.m_bStringID = reader.numberOrZero("IsStringID") > 0;
    option.m_strSeparator = reader.text("Separator");
    option.m_nIdentity = reader.numberOrZero("Identity");
    option.m_nFormat = reader.numberOrZero("Format");
    option.m_bExchange = reader.numberOrZero("Exg") == 1;
    option.m_nWnd = reader.numberOrZero("Wnd");
    option.m_strPicType = reader.text("PicType");
    option.m_nPicID = reader.number("PicID");
    return option;
}

QString SavingOption::text() const
{
    OptionWriter writer;
    writer.text("BasePath", m_strBasePath);
    if (!m_strStringID.isEmpty())
        writer.text("StringID", m_strStringID);
    writer.number("IsStringID", m_bStringID ? 1 : 0);
    if (!m_strSeparator.isEmpty())
        writer.text("Separator", m_strSeparator);
    writer.number("Identity", m_nIdentity).number("Format", m_nFormat).number("Exg", m_bExchange ? 1 : 0);
    writer.number("Wnd", m_nWnd);
    if (m_nWnd == RecordWnd)
        writer.text("PicType", m_strPicType).number("PicID", recordID());
    return writer.result();
}
