#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QtTest>

/// The menu of a workbench that has no extension algorithms.
class tstPlainMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menuOfExtensionAlgorithmsIsDisabledWhereThereIsNone();
};

void tstPlainMenu::menuOfExtensionAlgorithmsIsDisabledWhereThereIsNone()
{
    PluginFolders::clear();
    PluginFolders::addBase(QStringLiteral("algorithmProbe"));
    TaskMgr::getInstance();
    auto task = makeSourcelessTask();
    const Tab tab(*task);

    const QMenu* menu = openedMenu(tab);

    QVERIFY(entry(menu, QStringLiteral("添加算法"))->isEnabled());
    QVERIFY(!entry(menu, QStringLiteral("添加扩展算法"))->isEnabled());
}

QTEST_MAIN(tstPlainMenu)
#include "tstPlainMenu.moc"
