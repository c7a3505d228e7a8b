#include "toGrayOption.h"

ToGrayOption ToGrayOption::read(const QString& text)
{
    const TaggedReader reader(text);
    ToGrayOption option;
    option.input.id = PictureRef::read(reader, PictureKind::Colour).id;
    option.output =
        OutputRef::read(reader, QStringLiteral("Output"), QStringLiteral("灰度图"), QStringLiteral("彩色转灰度的结果"));
    return option;
}

QString ToGrayOption::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Output"));
    return writer.result();
}
