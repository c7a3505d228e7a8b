// The readers of tagged text against an independent model. Input: opening marker, closing marker and text, each ended
// by a zero byte.
#include "fuzzInput.h"
#include "fuzzSupport.h"
#include "globalFunction.h"
#include "naiveText.h"
#include "taskMgr/projectText.h"

namespace {

void checkBodies(const QString& text, const QString& open, const QString& close)
{
    Fuzz::expectEqual(GlobalFunction::getBody(text, open, close), Naive::body(text, open, close), "getBody");

    QString left = text;
    QString wantedLeft = text;
    for (int i = 0; i < 4; ++i) {
        const QString wanted = Naive::takeBody(wantedLeft, open, close);
        Fuzz::expectEqual(GlobalFunction::getAndRemoveBody(left, open, close), wanted, "getAndRemoveBody");
        Fuzz::expectEqual(left, wantedLeft, "what getAndRemoveBody leaves");
    }
}

/// Repeated elements, as a project is read.
void checkElements(const QString& text, const QString& open, const QString& close)
{
    ElementReader reader(text, open, close);
    QString wantedLeft = text;
    QString wanted;
    do {
        wanted = Naive::takeBody(wantedLeft, open, close);
        Fuzz::expectEqual(reader.next().toString(), wanted, "next element");
        Fuzz::expectEqual(reader.remaining(), wantedLeft, "what the elements leave");
    } while (!wanted.isEmpty());
}

void checkTrimming(const QString& text)
{
    QString trimmed = text;
    GlobalFunction::trimString(trimmed);
    Fuzz::expectEqual(trimmed, Naive::trimmed(text), "trimString");
    Fuzz::expectEqual(ProjectText::collapseEmptyLines(text), Naive::withoutEmptyLines(text), "collapseEmptyLines");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const QString open = QString::fromUtf8(input.text());
    const QString close = QString::fromUtf8(input.text());
    const QString text = QString::fromUtf8(input.rest());
    checkBodies(text, open, close);
    checkElements(text, QStringLiteral("<=TaskInfo=>"), QStringLiteral("</=TaskInfo=>"));
    checkElements(text, QStringLiteral("<-TaskItem->"), QStringLiteral("</-TaskItem->"));
    checkTrimming(text);
    return 0;
}
