#include "testPatternOption.h"

#include <pacer.h>
#include <taggedText.h>

TestPatternOption TestPatternOption::read(const QString& text)
{
    const TaggedReader reader(text);
    TestPatternOption option;
    TestPattern::Scene& scene = option.scene;
    scene.width = reader.number(QStringLiteral("Width"), scene.width, 1, LargestSide);
    scene.height = reader.number(QStringLiteral("Height"), scene.height, 1, LargestSide);
    scene.discs = reader.number(QStringLiteral("Discs"), scene.discs, 0, MostShapes);
    scene.bars = reader.number(QStringLiteral("Bars"), scene.bars, 0, MostShapes);
    scene.text = reader.flag(QStringLiteral("Text"), scene.text);
    option.rate = Pacer::possibleRate(reader.real(QStringLiteral("Rate"), option.rate, 0, Pacer::MaxRate));
    return option;
}

QString TestPatternOption::write() const
{
    return TaggedWriter()
        .number(QStringLiteral("Width"), scene.width)
        .number(QStringLiteral("Height"), scene.height)
        .number(QStringLiteral("Discs"), scene.discs)
        .number(QStringLiteral("Bars"), scene.bars)
        .flag(QStringLiteral("Text"), scene.text)
        .real(QStringLiteral("Rate"), rate)
        .result();
}
