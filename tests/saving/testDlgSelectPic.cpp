#include "dialogDriver.h"
#include "pictureSupport.h"
#include "saving/dlgSelectPic.h"

using namespace DialogDriver;
using namespace PictureSupport;

class TestDlgSelectPic : public QObject
{
    Q_OBJECT

    Store m_cStore;

private Q_SLOTS:
    void init() { m_cStore = makeStore(); }

    void recordsAreListedInOrderOfTheirIdentifiers()
    {
        m_cStore->getParamDIB(12)->setName(QStringLiteral("后"));
        m_cStore->getParamDIB(4)->setName(QStringLiteral("前"));
        m_cStore->getParamDIB(4)->setDescribe(QStringLiteral("描述"));
        m_cStore->getParamGray8(7)->setName(QStringLiteral("grey"));
        DlgSelectPic dialog(m_cStore.get());
        const auto* colour = child<QTableWidget>(dialog, "tblRGB");
        const auto* grey = child<QTableWidget>(dialog, "tblGray");
        QCOMPARE(headersOf(colour), (QStringList{QStringLiteral("名称"), QStringLiteral("描述")}));
        QCOMPARE(headersOf(grey), (QStringList{QStringLiteral("名称"), QStringLiteral("描述")}));
        QCOMPARE(colour->rowCount(), 2);
        QCOMPARE(rowOf(colour, 0), (QStringList{QStringLiteral("前"), QStringLiteral("描述")}));
        QCOMPARE(rowOf(colour, 1), (QStringList{QStringLiteral("后"), ""}));
        QCOMPARE(grey->rowCount(), 1);
        QCOMPARE(rowOf(grey, 0), (QStringList{"grey", ""}));
    }

    void okTakesTheSelectedRowOfTheCurrentTab()
    {
        m_cStore->getParamDIB(12);
        m_cStore->getParamDIB(4);
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        QCOMPARE(dialog.getSelectedID(), -1);
        QCOMPARE(dialog.getSelectedTab(), 0);
        clickCell(child<QTableWidget>(dialog, "tblRGB"), 1);
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
        QCOMPARE(dialog.getSelectedID(), 12);
        QCOMPARE(dialog.getSelectedTab(), 0);
    }

    void recordZeroIsARecordLikeOthers()
    {
        m_cStore->getParamDIB(0);
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        clickCell(child<QTableWidget>(dialog, "tblRGB"), 0);
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
        QCOMPARE(dialog.getSelectedID(), 0);
    }

    void windowHasNoButtonForHelp()
    {
        const DlgSelectPic dialog(m_cStore.get());
        QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    }

    void okWithoutASelectedRowDoesNothing()
    {
        m_cStore->getParamDIB(4);
        m_cStore->getParamGray8(7);
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        click(dialog, "btnOK");
        QVERIFY(dialog.isVisible());
        // A row of the other tab does not count.
        clickCell(child<QTableWidget>(dialog, "tblRGB"), 0);
        child<QTabWidget>(dialog, "tabPic")->setCurrentIndex(1);
        click(dialog, "btnOK");
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getSelectedTab(), 1);
        QCOMPARE(dialog.getSelectedID(), -1);
    }

    void recordOfNegativeIdentifierIsRefused()
    {
        m_cStore->getParamGray8(-5);
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        child<QTabWidget>(dialog, "tabPic")->setCurrentIndex(1);
        clickCell(child<QTableWidget>(dialog, "tblGray"), 0);
        BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("未选中图像"));
        QVERIFY(!box.isInformation());
        QVERIFY(dialog.isVisible());
    }

    void withoutAStoreOKDoesNothing()
    {
        DlgSelectPic dialog(nullptr);
        dialog.show();
        child<QTabWidget>(dialog, "tabPic")->setCurrentIndex(1);
        click(dialog, "btnOK");
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getSelectedTab(), 0);
        QCOMPARE(child<QTableWidget>(dialog, "tblRGB")->rowCount(), 0);
    }

    void cancelAndEscapeReject()
    {
        m_cStore->getParamDIB(4);
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        clickCell(child<QTableWidget>(dialog, "tblRGB"), 0);
        click(dialog, "btnCancel");
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int{QDialog::Rejected});
        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.getSelectedID(), -1);
    }

    void tabVisitsTheTabsTheTableAndTheButtons()
    {
        m_cStore->getParamDIB(4);
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        child<QTabWidget>(dialog, "tabPic")->tabBar()->setFocus();
        QStringList visited;
        for (int i = 0; i < 4; ++i) {
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
            visited += dialog.focusWidget()->objectName();
        }
        QCOMPARE(visited, (QStringList{"tblRGB", "btnOK", "btnCancel", "qt_tabwidget_tabbar"}));
    }

    void tablesGrowWithTheDialog()
    {
        DlgSelectPic dialog(m_cStore.get());
        dialog.show();
        const int before = child<QTableWidget>(dialog, "tblRGB")->height();
        dialog.resize(dialog.width(), dialog.height() + 100);
        QTRY_COMPARE(child<QTableWidget>(dialog, "tblRGB")->height(), before + 100);
    }
};

QTEST_MAIN(TestDlgSelectPic)
#include "testDlgSelectPic.moc"
