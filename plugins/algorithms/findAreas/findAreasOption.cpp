#include "findAreasOption.h"

FindAreasOption FindAreasOption::read(const QString& text)
{
    const TaggedReader reader(text);
    FindAreasOption option;
    option.input.id = PictureRef::read(reader, PictureKind::Gray).id;
    option.areas =
        OutputRef::read(reader, QStringLiteral("Areas"), QStringLiteral("区域"), QStringLiteral("查找区域的结果"));
    option.count =
        OutputRef::read(reader, QStringLiteral("Count"), QStringLiteral("区域数"), QStringLiteral("查找区域的个数"));
    option.minSize = reader.number(QStringLiteral("MinSize"), option.minSize, 1, LargestSize);
    option.maxSize = reader.number(QStringLiteral("MaxSize"), option.maxSize, 0, LargestSize);
    option.print = reader.flag(QStringLiteral("Print"), option.print);
    option.whenNone = reader.number(QStringLiteral("WhenNone"), option.whenNone, GoOn, Stop);
    option.skipSteps = reader.number(QStringLiteral("SkipSteps"), option.skipSteps, 1, MostSkippedSteps);
    return option;
}

QString FindAreasOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    areas.write(writer, QStringLiteral("Areas"));
    count.write(writer, QStringLiteral("Count"));
    writer.number(QStringLiteral("MinSize"), minSize)
        .number(QStringLiteral("MaxSize"), maxSize)
        .flag(QStringLiteral("Print"), print)
        .number(QStringLiteral("WhenNone"), whenNone)
        .number(QStringLiteral("SkipSteps"), skipSteps);
    return writer.result();
}
