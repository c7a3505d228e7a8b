#include "memoryArenas.h"

#include <QtTest>

#include <cstdlib>
#include <cstring>
#include <vector>

#include <sys/resource.h>

namespace {

constexpr std::size_t PictureBytes = 6 << 20;
constexpr int Pictures = 4;

long pagesTouchedFirst()
{
    rusage use{};
    getrusage(RUSAGE_THREAD, &use);
    return use.ru_minflt;
}

/// What a step does that needs some pictures for itself: allocates, writes and frees them.
void useAndFree()
{
    std::vector<void*> pictures;
    for (int i = 0; i < Pictures; ++i) {
        pictures.push_back(std::malloc(PictureBytes));
        std::memset(pictures.back(), i + 1, PictureBytes);
    }
    for (void* picture : pictures)
        std::free(picture);
}

/// Pages that one more such step gets from the system, once there were some.
long pagesOfOneMoreStep()
{
    for (int i = 0; i < 10; ++i)
        useAndFree();
    const long before = pagesTouchedFirst();
    useAndFree();
    return pagesTouchedFirst() - before;
}

}  // namespace

class testFreedMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freedPicturesAreUsedAgainWithoutTheSystem();
};

void testFreedMemory::freedPicturesAreUsedAgainWithoutTheSystem()
{
    const long pages = pagesOfOneMoreStep();
    QVERIFY2(pages < 64, qPrintable(QString::number(pages)));
}

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    QCoreApplication app(argc, argv);
    testFreedMemory test;
    return QTest::qExec(&test, argc, argv);
}

#include "testFreedMemory.moc"
