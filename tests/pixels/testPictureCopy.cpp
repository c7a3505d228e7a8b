#include "guardedPage.h"
#include "pixelSupport.h"
#include "pixels/copyKernels.h"
#include "pixels/pixels.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>

using namespace PixelSupport;

namespace {

void addCopies()
{
    QTest::addColumn<int>("form");
    int index = 0;
    for (const CopyKernels* kernels : CopyKernels::available())
        QTest::newRow(kernels->m_pchName) << index++;
}

CopyKernels::Copy copyOfRow()
{
    QFETCH(int, form);
    return CopyKernels::available().at(static_cast<std::size_t>(form))->m_pfnCopy;
}

/// Between bytes that have to stay, at offsets from the alignment of the buffers.
void checkCopy(CopyKernels::Copy copy, std::size_t bytes, std::size_t sourceOffset, std::size_t targetOffset)
{
    const Bytes source = mixedBytes(sourceOffset + bytes, static_cast<unsigned>(bytes + sourceOffset));
    const auto first = source.begin() + static_cast<std::ptrdiff_t>(sourceOffset);
    Bytes expected(targetOffset + bytes + 3, 0xEE);
    Bytes target = expected;
    std::copy(first, source.end(), expected.begin() + static_cast<std::ptrdiff_t>(targetOffset));
    copy(source.data() + sourceOffset, target.data() + targetOffset, bytes);
    QVERIFY(target == expected);
}

/// What the system says of the processor; a sanitizer knows the plain copy alone.
QStringList expectedCopies()
{
    QStringList names{"plain"};
#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    QFile file("/proc/cpuinfo");
    if (file.open(QIODevice::ReadOnly) &&
        QString::fromLatin1(file.readAll()).contains(QRegularExpression("\\berms\\b")))
        names.append("strings");
    names.append("pastCache");
#endif
    return names;
}

}  // namespace

class TestPictureCopy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLengthAtEveryOffsetIsCopied_data() { addCopies(); }
    void everyLengthAtEveryOffsetIsCopied()
    {
        const CopyKernels::Copy copy = copyOfRow();
        for (std::size_t offset = 0; offset < 65; ++offset) {
            for (std::size_t bytes = 0; bytes <= 200; ++bytes) {
                checkCopy(copy, bytes, offset % 7, offset);
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QStringLiteral("%1 bytes, offset %2").arg(bytes).arg(offset)));
            }
        }
    }

    void nothingAroundAPictureIsReadOrWritten_data() { addCopies(); }
    void nothingAroundAPictureIsReadOrWritten()
    {
        const CopyKernels::Copy copy = copyOfRow();
        const GuardedPage source;
        const GuardedPage target;
        for (std::size_t bytes = 0; bytes <= 200; ++bytes) {
            const Bytes picture = mixedBytes(bytes, static_cast<unsigned>(bytes));
            for (unsigned char* from : {source.first(), source.last(bytes)}) {
                for (unsigned char* to : {target.first(), target.last(bytes)}) {
                    std::copy(picture.begin(), picture.end(), from);
                    copy(from, to, bytes);
                    QCOMPARE(Bytes(to, to + bytes), picture);
                }
            }
        }
    }

    void picturesOfEverySizeAreCopiedWhole_data()
    {
        QTest::addColumn<int>("bytes");
        for (const int around : {0, 640 * 480 * 3, 1 << 20, 1920 * 1080 * 3, 16 << 20}) {
            for (const int bytes : {around - 1, around, around + 1}) {
                if (bytes >= 0)
                    QTest::newRow(qPrintable(QString::number(bytes))) << bytes;
            }
        }
    }
    void picturesOfEverySizeAreCopiedWhole()
    {
        QFETCH(int, bytes);
        checkCopy(Pixels::copyPicture, static_cast<std::size_t>(bytes), 1, 2);
        checkCopy(Pixels::copyPictureAside, static_cast<std::size_t>(bytes), 1, 2);
    }

    void copiesAreThoseThatTheProcessorHas()
    {
        QStringList names;
        for (const CopyKernels* kernels : CopyKernels::available())
            names.append(kernels->m_pchName);
        QCOMPARE(names, expectedCopies());
    }
};

QTEST_APPLESS_MAIN(TestPictureCopy)
#include "testPictureCopy.moc"
