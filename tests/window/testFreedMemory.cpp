#include "memoryArenas.h"
#include "steadyPages.h"

#include <QtTest>

class testFreedMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freedPicturesAreUsedAgainWithoutTheSystem();
};

void testFreedMemory::freedPicturesAreUsedAgainWithoutTheSystem()
{
    const long pages = SteadyPages::ofOneMoreStep();
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
