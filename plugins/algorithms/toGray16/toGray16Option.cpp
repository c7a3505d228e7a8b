#include "toGray16Option.h"

ToGray16Option ToGray16Option::read(const QString& text)
{
    const TaggedReader reader(text);
    ToGray16Option option;
    option.input.id = PictureRef::read(reader, PictureKind::Colour).id;
    option.output = OutputRef::read(reader, QStringLiteral("Output"), QStringLiteral("16位灰度图"),
                                    QStringLiteral("彩色转16位灰度的结果"));
    return option;
}

QString ToGray16Option::write() const
{
    TaggedWriter writer;
    input.write(writer);
    output.write(writer, QStringLiteral("Output"));
    return writer.result();
}
