#include "mainwindow.h"
#include "memoryDisk/dlgMemoryDiskStatus.h"
#include "pluginFolders.h"

#include <QAction>
#include <QApplication>
#include <QPointer>
#include <QtTest>

namespace {

QList<DlgMemoryDiskStatus*> statusWindows()
{
    QList<DlgMemoryDiskStatus*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<DlgMemoryDiskStatus*>(widget))
            windows += window;
    }
    return windows;
}

}  // namespace

/// How the main window shows the memory disks.
class MemoryWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PluginFolders::clear(); }
    void init()
    {
        m_pcWindow = std::make_unique<MainWindow>();
        m_pcWindow->setGeometry(60, 40, 700, 500);
        m_pcWindow->show();
        m_pcAction = m_pcWindow->findChild<QAction*>("viewMemoryWnd");
        QVERIFY(m_pcAction);
    }
    void cleanup() { m_pcWindow.reset(); }

    void commandIsOpenFromTheStartAndMakesNothingUntilUsed()
    {
        QVERIFY(m_pcAction->isEnabled());
        QCOMPARE(m_pcAction->text(), QStringLiteral("内存盘状态"));
        QCOMPARE(statusWindows().size(), 0);
    }

    void firstUseShowsItModelessWithTheRightEdgesLinedUp()
    {
        m_pcAction->trigger();

        QCOMPARE(statusWindows().size(), 1);
        const DlgMemoryDiskStatus* status = statusWindows().first();
        QVERIFY(status->isVisible());
        QVERIFY(!status->isModal());
        QVERIFY(!status->parentWidget());
        QVERIFY(status->windowFlags() & Qt::WindowStaysOnTopHint);
        QCOMPARE(status->x() + status->width(), m_pcWindow->x() + m_pcWindow->width());
        QCOMPARE(status->y(), m_pcWindow->y());
        QCOMPARE(status->size(), status->sizeHint());
    }

    void laterUsesShowTheSameWindowWhereItIs()
    {
        m_pcAction->trigger();
        DlgMemoryDiskStatus* status = statusWindows().first();
        status->move(11, 22);
        status->close();
        QVERIFY(!status->isVisible());

        m_pcAction->trigger();
        m_pcAction->trigger();

        QCOMPARE(statusWindows(), QList<DlgMemoryDiskStatus*>{status});
        QVERIFY(status->isVisible());
        QCOMPARE(status->pos(), QPoint(11, 22));
    }

    void livesAsLongAsTheMainWindowAndDoesNotKeepTheProgramRunning()
    {
        m_pcAction->trigger();
        const QPointer<DlgMemoryDiskStatus> status = statusWindows().first();
        QVERIFY(!status->testAttribute(Qt::WA_QuitOnClose));
        m_pcWindow.reset();
        QVERIFY(!status);
    }

private:
    std::unique_ptr<MainWindow> m_pcWindow;
    QAction* m_pcAction = nullptr;
};

QTEST_MAIN(MemoryWindowTest)
#include "memoryWindowTest.moc"
