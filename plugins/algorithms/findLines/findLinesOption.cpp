#include "findLinesOption.h"

FindLinesOption FindLinesOption::read(const QString& text)
{
    const TaggedReader reader(text);
    FindLinesOption option;
    option.input.id = PictureRef::read(reader, PictureKind::Gray).id;
    option.output =
        OutputRef::read(reader, QStringLiteral("Lines"), QStringLiteral("直线"), QStringLiteral("查找直线的结果"));
    option.lowEdge = reader.number(QStringLiteral("LowEdge"), option.lowEdge, 0, 9999);
    option.highEdge = reader.number(QStringLiteral("HighEdge"), option.highEdge, 0, 9999);
    option.votes = reader.number(QStringLiteral("Votes"), option.votes, 1, 99999);
    option.minLength = reader.number(QStringLiteral("MinLength"), option.minLength, 1, 99999);
    option.maxGap = reader.number(QStringLiteral("MaxGap"), option.maxGap, 0, 9999);
    return option;
}

QString FindLinesOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Lines"));
    writer.number(QStringLiteral("LowEdge"), lowEdge)
        .number(QStringLiteral("HighEdge"), highEdge)
        .number(QStringLiteral("Votes"), votes)
        .number(QStringLiteral("MinLength"), minLength)
        .number(QStringLiteral("MaxGap"), maxGap);
    return writer.result();
}
