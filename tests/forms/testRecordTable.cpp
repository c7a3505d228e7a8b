#include "dialogDriver.h"
#include "forms/recordTable.h"
#include "pictureSupport.h"

#include <QLineEdit>

using namespace DialogDriver;
using namespace PictureSupport;

class TestRecordTable : public QObject
{
    Q_OBJECT

    Store m_cStore;
    std::unique_ptr<QTableWidget> m_pcTable;

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

    void cellsCannotBeEdited()
    {
        m_cStore->getParamDIB(1)->setName(QStringLiteral("name"));
        RecordTable table(m_pcTable.get());
        table.fill(m_cStore->requestParamDIBMap());
        m_pcTable->show();
        doubleClickCell(m_pcTable.get(), 0);
        QVERIFY(!m_pcTable->findChild<QLineEdit*>());
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
