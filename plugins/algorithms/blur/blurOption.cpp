#include "blurOption.h"

BlurOption BlurOption::read(const QString& text)
{
    const TaggedReader reader(text);
    BlurOption option;
    option.input = PictureRef::read(reader, PictureKind::Gray);
    option.output =
        OutputRef::read(reader, QStringLiteral("Output"), QStringLiteral("模糊图"), QStringLiteral("模糊的结果"));
    option.method = reader.number(QStringLiteral("Method"), option.method, Box, Median);
    option.size = reader.number(QStringLiteral("Size"), option.size, 1, LargestSize) | 1;
    return option;
}

QString BlurOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Output"));
    writer.number(QStringLiteral("Method"), method).number(QStringLiteral("Size"), size);
    return writer.result();
}
