#include "thresholdOption.h"

ThresholdOption ThresholdOption::read(const QString& text)
{
    const TaggedReader reader(text);
    ThresholdOption option;
    option.input.id = PictureRef::read(reader, PictureKind::Gray).id;
    option.output =
        OutputRef::read(reader, QStringLiteral("Output"), QStringLiteral("二值图"), QStringLiteral("二值化的结果"));
    option.method = reader.number(QStringLiteral("Method"), option.method, Fixed, Adaptive);
    option.value = reader.number(QStringLiteral("Value"), option.value, 0, 255);
    option.blockSize = reader.number(QStringLiteral("BlockSize"), option.blockSize, SmallestBlock, LargestBlock) | 1;
    option.offset = reader.number(QStringLiteral("Offset"), option.offset, -255, 255);
    option.invert = reader.flag(QStringLiteral("Invert"), option.invert);
    return option;
}

QString ThresholdOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Output"));
    writer.number(QStringLiteral("Method"), method)
        .number(QStringLiteral("Value"), value)
        .number(QStringLiteral("BlockSize"), blockSize)
        .number(QStringLiteral("Offset"), offset)
        .flag(QStringLiteral("Invert"), invert);
    return writer.result();
}
