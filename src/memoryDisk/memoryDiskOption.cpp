#include "memoryDisk/memoryDiskOption.h"

#include "optionText.h"

MemoryDiskOption MemoryDiskOption::fromText(const QString& text)
{
    const OptionReader reader(text);
    return {reader.number("MemDisk"), reader.number("InputID"), reader.text("InputType")};
}

QString MemoryDiskOption::toText() const
{
    OptionWriter writer;
    writer.number("MemDisk", m_nDisk.value_or(0)).number("InputID", m_nInputID.value_or(0));
    return writer.text("InputType", m_strInputType).result();
}
