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
        QStringList builtins;
        for (const ArithmFactory::ArithmInfo& info : list) {
            builtins += info.m_strClass + "/" + info.m_strName + "/" + info.m_pcArithm->getID();
            QVERIFY(!info.m_pcArithm->IsExtLib());
        }
        QCOMPARE(builtins, QStringList({"系统/写内存盘/KW_MemoryDisk", "系统/绘制对象/KW_Drawing",
                                        "系统/保存图像/KW_Saving", "系统/加载图像/KW_Loading"}));
        QVERIFY(!QCoreApplication::instance());
    }
};

QTEST_APPLESS_MAIN(TestArithmFactoryAlone)
#include "testArithmFactoryAlone.moc"
