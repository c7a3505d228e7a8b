#include "dialogDriver.h"
#include "forms/recordTable.h"
#include "pictureSupport.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolTip>

using namespace DialogDriver;
using namespace PictureSupport;

class TestRecordTable : public QObject
{
    Q_OBJECT

    Store m_cStore;
    std::unique_ptr<QTableWidget> m_pcTable;

    /// What comes up while the mouse rests on a cell.
    QString tipOver(int row, int column)
    {
        const QPoint place = m_pcTable->visualItemRect(m_pcTable->item(row, column)).center();
        QHelpEvent help(QEvent::ToolTip, place, m_pcTable->viewport()->mapToGlobal(place));
        QApplication::sendEvent(m_pcTable->viewport(), &help);
        return QToolTip::text();
    }

private Q_SLOTS:
    void init()
    {
        m_cStore = makeStore();
        m_pcTable = std::make_unique<QTableWidget>(0, 2);
        m_pcTable->resize(300, 200);
    }

    void rowsStandForRecordsInAscendingOrder()
    {
        for (int id : {30, -4, 7}) {
            m_cStore->getParamPoints(id)->setName(QString::number(id));
            m_cStore->getParamPoints(id)->setDescribe("d" + QString::number(id));
        }
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamPointsMap());
        QCOMPARE(m_pcTable->rowCount(), 3);
        QCOMPARE(rowOf(m_pcTable.get(), 0), (QStringList{"-4", "d-4"}));
        QCOMPARE(rowOf(m_pcTable.get(), 2), (QStringList{"30", "d30"}));
        QCOMPARE(table.idOfRow(0), -4);
        QCOMPARE(table.idOfRow(1), 7);
        QCOMPARE(table.idOfRow(2), 30);
        QCOMPARE(table.idOfRow(3), -1);
        QCOMPARE(table.idOfRow(-1, 0), 0);
        QCOMPARE(table.rowOfID(30), 2);
        QCOMPARE(table.rowOfID(31), -1);
        QCOMPARE(table.text(1, 0), QStringLiteral("7"));
        QCOMPARE(table.text(9, 0), QString());
    }

    void noMapGivesAnEmptyTable()
    {
        RecordTable table(m_pcTable.get());
        table.fill(static_cast<const QMap<int, ParamDIB*>*>(nullptr));
        QCOMPARE(m_pcTable->rowCount(), 0);
        QCOMPARE(table.selectedRow(), -1);
    }

    void oneWholeRowIsSelectedAtATime()
    {
        for (int id : {1, 2, 3})
            m_cStore->getParamDIB(id)->setName(QStringLiteral("name"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        clickCell(m_pcTable.get(), 2);
        QCOMPARE(table.selectedRow(), 2);
        clickCell(m_pcTable.get(), 0, 1);
        QCOMPARE(table.selectedRow(), 0);
        QCOMPARE(m_pcTable->selectedItems().size(), 2);
        table.selectRow(1);
        QCOMPARE(table.selectedRow(), 1);
        table.selectRow(8);
        QCOMPARE(table.selectedRow(), 1);
    }

    void selectedRowIsBroughtIntoView()
    {
        for (int id = 1; id <= 50; ++id)
            m_cStore->getParamDIB(id)->setName(QStringLiteral("name"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        const auto isInView = [this](int row) {
            return m_pcTable->viewport()->rect().contains(m_pcTable->visualItemRect(m_pcTable->item(row, 0)).center());
        };
        QVERIFY(!isInView(40));
        table.selectRow(40);
        QVERIFY(isInView(40));
    }

    void selectedRowKeepsItsFirstColumnInView()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("name"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        m_pcTable->setColumnWidth(0, 500);
        QTRY_VERIFY(m_pcTable->horizontalScrollBar()->maximum() > 0);
        table.selectRow(0);
        QCOMPARE(m_pcTable->horizontalScrollBar()->value(), 0);
    }

    void rowNumbersAreNotShown()
    {
        const RecordTable table(m_pcTable.get());
        m_pcTable->show();
        QVERIFY(!m_pcTable->verticalHeader()->isVisible());
    }

    void headersLookTheSameWhenARowIsSelected()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("name"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        const QImage before = m_pcTable->horizontalHeader()->grab().toImage();
        table.selectRow(0);
        QCOMPARE(m_pcTable->horizontalHeader()->grab().toImage(), before);
    }

    void firstColumnIsAsWideAsItsTexts()
    {
        const QString name = QStringLiteral("a name that is wider than columns are");
        m_cStore->getParamDIB(1)->setName(name);
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        QVERIFY(m_pcTable->columnWidth(0) >= m_pcTable->fontMetrics().horizontalAdvance(name));
        QVERIFY(m_pcTable->columnWidth(0) > 100);  // which it is without texts
    }

    void rowsAlternateInColour()
    {
        const RecordTable table(m_pcTable.get());
        QVERIFY(m_pcTable->alternatingRowColors());
    }

    void clickOnAHeaderSortsNothing()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("z"));
        m_cStore->getParamDIB(2)->setName(QStringLiteral("a"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        QHeaderView* header = m_pcTable->horizontalHeader();
        for (int click = 0; click < 2; ++click) {
            QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, header->height() / 2));
            QCOMPARE(table.text(0, 0), QStringLiteral("z"));
            QCOMPARE(table.text(1, 0), QStringLiteral("a"));
        }
    }

    void cellsCannotBeEdited()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("name"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        doubleClickCell(m_pcTable.get(), 0);
        QVERIFY(!m_pcTable->findChild<QLineEdit*>());
    }

    void cellThatIsCutOffIsShownWholeInATip()
    {
        const QString wide = QStringLiteral("a description that is much wider than its column, ").repeated(5);
        m_cStore->getParamDIB(1)->setName(QStringLiteral("short"));
        m_cStore->getParamDIB(1)->setDescribe(wide);
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        m_pcTable->setColumnWidth(1, 100);
        QCOMPARE(tipOver(0, 0), QString());
        QCOMPARE(tipOver(0, 1), wide);
    }

    void tipOfACellGoesBeforeThatOfTheTable()
    {
        const QString wide = QStringLiteral("a name that is much wider than its column");
        m_cStore->getParamDIB(1)->setName(wide);
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->setToolTip(QStringLiteral("of the table"));
        m_pcTable->show();
        QCOMPARE(tipOver(0, 0), QStringLiteral("of the table"));
        m_pcTable->setColumnWidth(0, 50);
        QCOMPARE(tipOver(0, 0), wide);
        QToolTip::hideText();
    }

    void cutOffCellIsNotShownWhenAskedWhatItIs()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("a name that is much wider than its column"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->setColumnWidth(0, 50);
        m_pcTable->show();
        const QPoint place = m_pcTable->visualItemRect(m_pcTable->item(0, 0)).center();
        QHelpEvent help(QEvent::WhatsThis, place, m_pcTable->viewport()->mapToGlobal(place));
        QTRY_COMPARE(QToolTip::text(), QString());
        QApplication::sendEvent(m_pcTable->viewport(), &help);
        QCOMPARE(QToolTip::text(), QString());
    }

    void lastColumnFillsTheTable()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("short"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        QTRY_COMPARE(m_pcTable->columnWidth(0) + m_pcTable->columnWidth(1), m_pcTable->viewport()->width());
        QVERIFY(m_pcTable->columnWidth(0) >= m_pcTable->fontMetrics().horizontalAdvance(QStringLiteral("short")));
    }
};

QTEST_MAIN(TestRecordTable)
#include "testRecordTable.moc"
