#include "pictureFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

/// The data source "Picture Folder" whose folder vanishes while it is played.
class TestVanishingFolder : public QObject, private PictureFiles
{
    Q_OBJECT

private slots:
    void init();
    void folderThatVanishesIsReportedAndPlayedAgainOnceItIsBack();
    void folderThatVanishesEndsARoundThatIsPlayedOnce();
    void folderThatComesAndGoesNeverHarms();

private:
    /// The red values of all pictures that come until something is so, and of those that wait by then.
    static QVector<int> redsUntil(SourceInstance& source, const std::function<bool()>& isSo)
    {
        QVector<int> reds;
        QElapsedTimer timer;
        timer.start();
        while (true) {
            const bool isLast = isSo() || timer.elapsed() > 20000;
            const Picture picture = source.request("RGB");
            if (!picture.isNull())
                reds << picture.byteAt(2);
            else if (isLast)
                return reds;
        }
    }
};

void TestVanishingFolder::init()
{
    m_pcDir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_pcDir->isValid());
}

void TestVanishingFolder::folderThatVanishesIsReportedAndPlayedAgainOnceItIsBack()
{
    const QString folder = m_pcDir->filePath("camera");
    QVERIFY(QDir().mkdir(folder));
    write("camera/1.png", QColor(1, 0, 0));
    write("camera/2.png", QColor(2, 0, 0));
    SourceInstance source(m_cLibrary, QStringLiteral("<Folder>%1</Folder><Rate>0</Rate>").arg(folder));
    source.start();
    QCOMPARE(nextReds(source, 3), (QVector<int>{1, 2, 1}));

    QVERIFY(QDir(folder).removeRecursively());

    // What was decoded ahead still comes, in order; then requests wait and give nothing.
    const QString missing = QStringLiteral("文件夹不存在: ") + folder;
    const QVector<int> ahead = redsUntil(source, [&] { return source.lastError() == missing; });
    QCOMPARE(ahead, (QVector<int>{2, 1, 2, 1}).mid(0, ahead.size()));
    QCOMPARE(source.lastError(), missing);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 190);

    QVERIFY(QDir().mkdir(folder));
    write("camera/3.png", QColor(3, 0, 0));
    QCOMPARE(nextReds(source, 2), (QVector<int>{3, 3}));
}

void TestVanishingFolder::folderThatVanishesEndsARoundThatIsPlayedOnce()
{
    const QString folder = m_pcDir->filePath("camera");
    QVERIFY(QDir().mkdir(folder));
    for (int i = 1; i <= 20; ++i)
        write(QStringLiteral("camera/%1.png").arg(i), QColor(i, 0, 0));
    SourceInstance source(m_cLibrary, QStringLiteral("<Folder>%1</Folder><Loop>0</Loop><Rate>0</Rate>").arg(folder));
    source.start();
    QCOMPARE(nextReds(source, 1), (QVector<int>{1}));

    QVERIFY(QDir(folder).removeRecursively());

    const QString lastFile = QStringLiteral("无法读取图片: 20.png");
    const QVector<int> ahead = redsUntil(source, [&] { return source.lastError() == lastFile; });
    QCOMPARE(ahead, (QVector<int>{2, 3, 4, 5}).mid(0, ahead.size()));
    QCOMPARE(source.lastError(), lastFile);
    QVERIFY(QDir().mkdir(folder));
    write("camera/1.png", QColor(1, 0, 0));
    for (int i = 0; i < 3; ++i)
        QVERIFY(source.request("RGB").isNull());  // it was played, once
}

void TestVanishingFolder::folderThatComesAndGoesNeverHarms()
{
    const QString folder = m_pcDir->filePath("camera");
    const QString away = m_pcDir->filePath("away");
    QVERIFY(QDir().mkdir(folder));
    for (int i = 1; i <= 5; ++i)
        write(QStringLiteral("camera/%1.bmp").arg(i), QColor(i, 0, 0), QSize(64, 48));
    SourceInstance source(m_cLibrary, QStringLiteral("<Folder>%1</Folder><Rate>0</Rate>").arg(folder));
    source.start();
    std::atomic<bool> end{false};
    std::thread moving([&] {
        while (!end) {
            QDir().rename(folder, away);
            QThread::usleep(100);
            QDir().rename(away, folder);
            QThread::msleep(1);
        }
    });
    int whole = 0;
    for (int i = 0; i < 60; ++i) {
        const Picture picture = source.waitFor("RGB");
        const bool isKnown = picture.width == 64 && picture.height == 48 && picture.byteAt(2) >= 1 &&
                             picture.byteAt(2) <= 5 && picture.byteAt(64 * 48 * 3 - 1) == picture.byteAt(2);
        whole += isKnown ? 1 : 0;
    }
    end = true;
    moving.join();
    QCOMPARE(whole, 60);
}

QTEST_GUILESS_MAIN(TestVanishingFolder)
#include "tst_vanishingFolder.moc"
