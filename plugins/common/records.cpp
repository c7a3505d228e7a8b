#include "records.h"

#include "messages.h"

#include <limits>

namespace {
const QString ColourName = QStringLiteral("RGB");
const QString GrayName = QStringLiteral("Gray8");
constexpr int LargestID = std::numeric_limits<int>::max();
}  // namespace

QString pictureKindName(PictureKind kind)
{
    return kind == PictureKind::Colour ? Messages::colourPicture() : Messages::grayPicture();
}

PictureRef PictureRef::read(const TaggedReader& reader, PictureKind fallback)
{
    PictureRef ref;
    ref.kind = fallback;
    const QString kind = reader.text(QStringLiteral("InputType")).trimmed();
    if (kind == ColourName || kind == GrayName)
        ref.kind = kind == ColourName ? PictureKind::Colour : PictureKind::Gray;
    ref.id = reader.number(QStringLiteral("InputID"), 0, 0, LargestID);
    return ref;
}

void PictureRef::write(TaggedWriter& writer) const
{
    writer.text(QStringLiteral("InputType"), kind == PictureKind::Colour ? ColourName : GrayName)
        .number(QStringLiteral("InputID"), id);
}

OutputRef OutputRef::read(const TaggedReader& reader, const QString& prefix, const QString& defaultName,
                          const QString& describe)
{
    OutputRef ref;
    ref.id = reader.number(prefix + QStringLiteral("ID"), -1, -1, LargestID);
    if (ref.id < 1)
        ref.id = -1;
    ref.name = reader.text(prefix + QStringLiteral("Name"));
    if (ref.name.isEmpty())
        ref.name = defaultName;
    ref.describe = describe;
    return ref;
}

void OutputRef::write(TaggedWriter& writer, const QString& prefix) const
{
    writer.number(prefix + QStringLiteral("ID"), id).text(prefix + QStringLiteral("Name"), name);
}

void OutputRef::rename(const QString& typed)
{
    const QString trimmed = typed.trimmed();
    // Option texts have no quoting, so a name must not look like a tag.
    if (!trimmed.isEmpty() && !trimmed.contains(QLatin1Char('<')))
        name = trimmed;
}

void OutputRef::label(ArithmParam& record) const
{
    if (record.getName() != name)
        record.setName(name);
    if (record.getDescribe() != describe)
        record.setDescribe(describe);
}
