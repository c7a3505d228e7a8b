#include "runAtOnce.h"
#include "saving/savingName.h"
#include "savingSupport.h"

#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include <atomic>
#include <thread>

using namespace PictureSupport;
using namespace SavingSupport;

namespace {

constexpr int Tasks = 10;
constexpr int Passes = 25;

}  // namespace

class TestSavingThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Qt lists its image plug-ins once, under a lock that the thread sanitizer does not see: before the threads
        // start.
        QVERIFY(!Folder().save(plainPicture(1, 1, 0xFF000000), "first.bmp").isEmpty());
        QVERIFY(!Folder().save(plainPicture(1, 1, 0xFF000000), "first.jpg").isEmpty());
    }

    void tenTasksNeverRepeatOrSkipANumberAndKeepTheirOwnNames()
    {
        const Folder folder;
        gNumber = 0;
        std::atomic<int> wrong{0};
        runAtOnce(Tasks, [&](int task) {
            const Store store = makeStore();
            store->getParamStrings(1)->append(QStringLiteral("任务%1").arg(task).toUtf8());
            Option option;
            option.folder = folder.path();
            option.string = QStringLiteral("1");
            option.isStringID = 1;
            for (int pass = 0; pass < Passes; ++pass) {
                plainRecord(*store, 3, 6, 5, qRgb(task, 10, 20));
                wrong += execute<Saving>(option.text(), store.get()).isEmpty() ? 0 : 1;
            }
        });
        QCOMPARE(wrong.load(), 0);

        QSet<int> numbers;
        QMap<int, int> filesOfTask;
        const QRegularExpression pattern(QStringLiteral("^任务(\\d)_(\\d+)\\.bmp$"));
        for (const QString& name : folder.names()) {
            const QRegularExpressionMatch match = pattern.match(name);
            QVERIFY2(match.hasMatch(), qPrintable(name));
            const int task = match.captured(1).toInt();
            numbers += match.captured(2).toInt();
            ++filesOfTask[task];
            QCOMPARE(QImage(folder.path(name)).pixel(5, 4), qRgb(task, 10, 20));
        }
        QCOMPARE(numbers.size(), Tasks * Passes);
        for (int number = 0; number < Tasks * Passes; ++number)
            QVERIFY(numbers.contains(number));
        for (int task = 0; task < Tasks; ++task)
            QCOMPARE(filesOfTask.value(task), Passes);
        QCOMPARE(gNumber.load(), Tasks * Passes);
    }

    void manyWritersOfOneFileLeaveOneWholePicture()
    {
        const Folder folder;
        const Option option = sameFileOption(folder.path());
        std::atomic<bool> done{false};
        std::atomic<int> torn{0};
        std::thread reader([&] {
            // A picture is there as a whole or not at all.
            while (!done) {
                const QByteArray bytes = bytesOf(folder.path("cam.bmp"));
                torn += bytes.isEmpty() || bytes.size() == 54 + 64 * 48 * 3 ? 0 : 1;
            }
        });
        runAtOnce(Tasks, [&](int task) {
            const Store store = makeStore();
            for (int pass = 0; pass < Passes; ++pass) {
                plainRecord(*store, 3, 64, 48, qRgb(task, task, task));
                execute<Saving>(option.text(), store.get());
            }
        });
        done = true;
        reader.join();
        QCOMPARE(torn.load(), 0);
        QCOMPARE(folder.names(), QStringList{"cam.bmp"});
        const QImage picture(folder.path("cam.bmp"));
        const QRgb first = picture.pixel(0, 0);
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 64; ++x)
                QCOMPARE(picture.pixel(x, y), first);
        }
    }

    void tenTasksMakeTheSameFolderAtOnce()
    {
        const Folder folder;
        runAtOnce(Tasks, [&](int task) {
            const Store store = makeStore();
            plainRecord(*store, 3, 2, 2, 0xFF000000);
            Option option;
            option.folder = folder.path("new");
            option.identity = 2;
            option.string = QString::number(task);
            execute<Saving>(option.text(), store.get());
        });
        QCOMPARE(QDir(folder.path("new")).entryList(QDir::Files | QDir::Hidden).size(), Tasks);
    }

    void resultBufferOfAThreadGrowsByHalvesAndIsItsOwn()
    {
        runAtOnce(Tasks, [](int task) {
            QString text(1024 + task, QLatin1Char(char('a' + task)));
            const char* result = Saving::transConfigStr(text);
            std::this_thread::yield();
            if (QString::fromUtf8(result) != text || Saving::s_nBuffLen != 1536)
                qFatal("another thread's text");
        });
        QString text;
        QCOMPARE(QByteArray(Saving::transConfigStr(text)), QByteArray());
        QCOMPARE(Saving::s_nBuffLen, 1024);
    }
};

QTEST_GUILESS_MAIN(TestSavingThreads)
#include "testSavingThreads.moc"
