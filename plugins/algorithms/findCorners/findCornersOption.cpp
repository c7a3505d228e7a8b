#include "findCornersOption.h"

FindCornersOption FindCornersOption::read(const QString& text)
{
    const TaggedReader reader(text);
    FindCornersOption option;
    option.input.id = PictureRef::read(reader, PictureKind::Gray).id;
    option.output =
        OutputRef::read(reader, QStringLiteral("Points"), QStringLiteral("角点"), QStringLiteral("查找角点的结果"));
    option.maxCount = reader.number(QStringLiteral("MaxCount"), option.maxCount, 1, 9999);
    option.quality = reader.number(QStringLiteral("Quality"), option.quality, 1, 100);
    option.minDistance = reader.number(QStringLiteral("MinDistance"), option.minDistance, 0, 9999);
    return option;
}

QString FindCornersOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Points"));
    writer.number(QStringLiteral("MaxCount"), maxCount)
        .number(QStringLiteral("Quality"), quality)
        .number(QStringLiteral("MinDistance"), minDistance);
    return writer.result();
}
