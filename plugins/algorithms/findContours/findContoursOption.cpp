#include "findContoursOption.h"

FindContoursOption FindContoursOption::read(const QString& text)
{
    const TaggedReader reader(text);
    FindContoursOption option;
    option.input.id = PictureRef::read(reader, PictureKind::Gray).id;
    option.output =
        OutputRef::read(reader, QStringLiteral("Polys"), QStringLiteral("多边形"), QStringLiteral("查找轮廓的结果"));
    option.minSize = reader.number(QStringLiteral("MinSize"), option.minSize, 0, 1000000000);
    option.minPoints = reader.number(QStringLiteral("MinPoints"), option.minPoints, 3, 9999);
    option.tolerance = reader.number(QStringLiteral("Tolerance"), option.tolerance, 0, 1000);
    return option;
}

QString FindContoursOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Polys"));
    writer.number(QStringLiteral("MinSize"), minSize)
        .number(QStringLiteral("MinPoints"), minPoints)
        .number(QStringLiteral("Tolerance"), tolerance);
    return writer.result();
}
