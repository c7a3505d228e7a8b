#include "arithm/arithm.h"
#include "arithm/arithmFactory.h"
#include "brokenLibraries.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

namespace {

struct Box
{
    QString title;
    QString text;
    bool hasParent;
};

/// Presses the button of every message box that shows, and remembers the boxes.
class BoxAnswerer : public QObject
{
public:
    BoxAnswerer()
    {
        connect(&m_cTimer, &QTimer::timeout, this, &BoxAnswerer::answer);
        m_cTimer.start(5);
    }
    const QVector<Box>& boxes() const { return m_vecBoxes; }

private:
    void answer()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        m_vecBoxes.append({box->windowTitle(), box->text(), box->parent() != nullptr});
        QTest::mouseClick(box->buttons().first(), Qt::LeftButton);
    }

    QTimer m_cTimer;
    QVector<Box> m_vecBoxes;
};

}  // namespace

/// What the user is told about libraries that do not load.
class TestArithmFactoryWarnings : public QObject
{
    Q_OBJECT

    QStringList m_lstBroken;  // In the order of discovery.
    QVector<Box> m_vecBoxes;

private slots:
    void initTestCase()
    {
        PluginFolders::clear();
        m_lstBroken += PluginFolders::write("baseArithm", "a_cut.so", libraryCutInTheMiddle());
        m_lstBroken += PluginFolders::write("baseArithm", "B_empty.SO", "");
        m_lstBroken += PluginFolders::write("baseArithm", "c_garbage.so", QByteArray(5000, '\xA5'));
        m_lstBroken += PluginFolders::write("baseArithm", "d_machine.so", libraryOfAnotherMachine());
        m_lstBroken += PluginFolders::addBase("algorithmUnresolved", "e_unresolved.so");
        PluginFolders::addBase("algorithmLacks_execute", "f_lacks.so");
        PluginFolders::addBase("algorithmEcho", "g_good.so");
        PluginFolders::write("baseArithm", "h_noLibrary.txt", "");
        PluginFolders::write("extArithm", "a_cut.so", libraryCutInTheMiddle());
        PluginFolders::write("extArithm", "b_empty.so", "");
        PluginFolders::write("extArithm", "c_machine.so", libraryOfAnotherMachine());
        PluginFolders::addExtension("algorithmUnresolved", "d_unresolved.so");
        PluginFolders::addExtension("algorithmTrace", "e_good.so");
        const BoxAnswerer answerer;
        ArithmFactory::getInstance();
        ArithmFactory::getInstance();
        m_vecBoxes = answerer.boxes();
    }

    void everyBrokenBaseLibraryIsReportedOnceWithItsReasonAndNothingElseIs()
    {
        QCOMPARE(m_vecBoxes.size(), 5);
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(m_vecBoxes[i].title, QString("Warning"));
            QVERIFY(!m_vecBoxes[i].hasParent);
            QVERIFY2(m_vecBoxes[i].text.contains(m_lstBroken[i]), qPrintable(m_vecBoxes[i].text));
        }
        QVERIFY(m_vecBoxes[4].text.contains("lumivantTestFunctionThatNobodyHas"));
    }

    void theRestWorks()
    {
        QStringList ids;
        for (const ArithmFactory::ArithmInfo& info : qAsConst(*ArithmFactory::getInstance()->getArithms()))
            ids += info.m_pcArithm->getID();
        QCOMPARE(ids,
                 QStringList({"KW_MemoryDisk", "KW_Drawing", "KW_Saving", "KW_Loading", "Test.Echo", "Test.Trace"}));
    }
};

QTEST_MAIN(TestArithmFactoryWarnings)
#include "testArithmFactoryWarnings.moc"
