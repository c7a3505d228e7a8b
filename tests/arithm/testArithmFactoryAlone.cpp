#include "arithm/arithm.h"
#include "arithm/arithmFactory.h"
#include "pluginFolders.h"

#include <QCoreApplication>
#include <QtTest>

/// The registry of a program that has no plug-in folders and no application object.
class TestArithmFactoryAlone : public QObject
{
    Q_OBJECT

private slots:
    void withoutFoldersThereAreTheBuiltinsOnly()
    {
        PluginFolders::clear();
        QVERIFY(!QCoreApplication::instance());
        const QList<ArithmFactory::ArithmInfo> list = *ArithmFactory::getInstance()->getArithms();
        QCOMPARE(list.size(), 1);
        QCOMPARE(list[0].m_strClass, QString("系统"));
        QCOMPARE(list[0].m_strName, QString("绘制对象"));
        QCOMPARE(list[0].m_pcArithm->getID(), QString("KW_Drawing"));
        QVERIFY(!list[0].m_pcArithm->IsExtLib());
        QVERIFY(!QCoreApplication::instance());
    }
};

QTEST_APPLESS_MAIN(TestArithmFactoryAlone)
#include "testArithmFactoryAlone.moc"
