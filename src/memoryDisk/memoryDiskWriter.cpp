#include "memoryDisk/memoryDisk.h"
#include "memoryDisk/memoryDiskMessages.h"
#include "memoryDisk/memoryDiskOption.h"
#include "paramStore/arithmParamMgr.h"
#include "resultText.h"

const char* MemoryDisk::s_ID = "KW_MemoryDisk";
thread_local std::unique_ptr<char[]> MemoryDisk::s_pchConfigStr;
thread_local int MemoryDisk::s_nBuffLen = 1024;

namespace {

// A full disk loses the picture and an empty record writes nothing; neither is an error of the step.
void writeColour(int disk, const ParamDIB* record)
{
    if (record && record->getWidth() > 0 && record->getHeight() > 0)
        MemoryDisk::getInstance(disk)->addDIB(record->getDIB(), record->getWidth(), record->getHeight());
}

void writeGray8(int disk, const ParamGray8* record)
{
    if (record && record->getWidth() > 0 && record->getHeight() > 0)
        MemoryDisk::getInstance(disk)->addGray8(record->getGray8(), record->getWidth(), record->getHeight());
}

bool isDisk(const std::optional<int>& disk)
{
    return disk && *disk >= 0 && *disk < MemoryDisk::DiskNum;
}

/// Writes what the option names; the error text, empty on success.
QString write(const MemoryDiskOption& option, const ArithmParamMgr* store)
{
    // Kept on purpose: the disk appears in the message as one raw character, a zero when it was no number.
    if (!isDisk(option.m_nDisk))
        return MemoryDiskMessages::noSuchDisk(option.m_nDisk.value_or(0));
    if (!option.m_nInputID)
        return MemoryDiskMessages::noSuchInput();
    const bool colour = option.m_strInputType == MemoryDiskOption::typeRGB();
    if (!colour && option.m_strInputType != MemoryDiskOption::typeGray8())
        return MemoryDiskMessages::unsupportedType(option.m_strInputType);
    if (!store)
        return {};
    if (colour)
        writeColour(*option.m_nDisk, store->findParamDIB(*option.m_nInputID));
    else
        writeGray8(*option.m_nDisk, store->findParamGray8(*option.m_nInputID));
    return {};
}

}  // namespace

QString MemoryDisk::getName()
{
    return QStringLiteral("写内存盘");
}

QString MemoryDisk::getClass()
{
    return QStringLiteral("系统");
}

const char* MemoryDisk::getID()
{
    return s_ID;
}

char* MemoryDisk::execute(char* option, ArithmParamMgr* store)
{
    QString result = write(MemoryDiskOption::fromText(QString::fromUtf8(option)), store);
    return transConfigStr(result);
}

char* MemoryDisk::transConfigStr(QString& text)
{
    return putResultText(s_pchConfigStr, s_nBuffLen, text);
}
