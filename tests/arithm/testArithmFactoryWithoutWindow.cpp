#include "arithm/arithm.h"
#include "arithm/arithmFactory.h"
#include "brokenLibraries.h"

#include <QtTest>

namespace {

QStringList s_lstMessages;

void remember(QtMsgType, const QMessageLogContext&, const QString& message)
{
    s_lstMessages += message;
}

}  // namespace

/// A program without a window system meets a broken base library.
class TestArithmFactoryWithoutWindow : public QObject
{
    Q_OBJECT

private slots:
    void reasonGoesToTheDebugOutputAndTheRestWorks()
    {
        PluginFolders::clear();
        const QString cut = PluginFolders::write("baseArithm", "cut.so", libraryCutInTheMiddle());
        PluginFolders::write("extArithm", "silent.so", libraryCutInTheMiddle());
        PluginFolders::addBase("algorithmEcho");
        const QtMessageHandler before = qInstallMessageHandler(remember);
        ArithmFactory* factory = ArithmFactory::getInstance();
        qInstallMessageHandler(before);
        QCOMPARE(s_lstMessages.size(), 1);
        QVERIFY2(s_lstMessages[0].contains(cut), qPrintable(s_lstMessages[0]));
        QVERIFY(factory->getArithm("Test.Echo"));
    }
};

QTEST_GUILESS_MAIN(TestArithmFactoryWithoutWindow)
#include "testArithmFactoryWithoutWindow.moc"
