#include "dialogDriver.h"
#include "memoryDisk/dlgMemoryDiskConfig.h"
#include "memoryDisk/memoryDisk.h"
#include "paramStore/arithmParamMgr.h"

#include <QGroupBox>
#include <QLabel>

using namespace DialogDriver;

class MemoryDiskConfigTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_pcStore = ArithmParamMgr::newInstance();
        name(m_pcStore->getParamDIB(9), "nine", "ninth");
        name(m_pcStore->getParamDIB(4), "four", "fourth");
        name(m_pcStore->getParamGray8(6), "six", "sixth");
        m_pcStore->getParamGray16(12);
        m_nRecords = recordNum(m_pcStore);
    }
    void cleanup()
    {
        QCOMPARE(recordNum(m_pcStore), m_nRecords);  // The dialog only lists.
        ArithmParamMgr::deleteInstance(m_pcStore);
    }

    void formHasItsTextsAndItems()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("写内存盘配置"));
        QCOMPARE(tabsOf(dialog, "tabDataInput"), (QStringList{"RGB", "Gray8"}));
        for (const char* table : {"tblRGB", "tblGray8"})
            QCOMPARE(headersOf(child<QTableWidget>(dialog, table)), (QStringList{"名称", "描述"}));
        QCOMPARE(child<QGroupBox>(dialog, "groupBox")->title(), QStringLiteral("输入变量"));
        QStringList labels;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            labels += label->text();
        labels.sort();
        QStringList expected{"名  称", "目标内存盘", "类  型"};
        expected.sort();
        QCOMPARE(labels, expected);
        QCOMPARE(itemsOf(dialog, "cmbMemDisk"),
                 (QStringList{"内存盘0", "内存盘1", "内存盘2", "内存盘3", "内存盘4", "内存盘5"}));
        QCOMPARE(child<QPushButton>(dialog, "btnOK")->text(), QStringLiteral("确  定"));
        QCOMPARE(child<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("取  消"));
    }

    void windowHasNoTitleBarButtons()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        QCOMPARE(dialog.windowFlags(), Qt::WindowFlags(Qt::Dialog | Qt::CustomizeWindowHint));
    }

    void tablesListTheRecordsInAscendingIdentifierOrder()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        const auto* colour = child<QTableWidget>(dialog, "tblRGB");
        QCOMPARE(colour->rowCount(), 2);
        QCOMPARE(rowOf(colour, 0), (QStringList{"four", "fourth"}));
        QCOMPARE(rowOf(colour, 1), (QStringList{"nine", "ninth"}));
        const auto* grey = child<QTableWidget>(dialog, "tblGray8");
        QCOMPARE(grey->rowCount(), 1);
        QCOMPARE(rowOf(grey, 0), (QStringList{"six", "sixth"}));
        for (const QTableWidget* table : {colour, grey}) {
            QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
            QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
        }
    }

    void doubleClickedColourRowIsWritten()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        dialog.show();
        doubleClickCell(child<QTableWidget>(dialog, "tblRGB"), 1);
        QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("nine"));
        QCOMPARE(child<QLineEdit>(dialog, "edtType")->text(), QStringLiteral("RGB"));
        pick(dialog, "cmbMemDisk", 2);

        click(dialog, "btnOK");

        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.getConfigString(),
                 QStringLiteral("<MemDisk>2</MemDisk><InputID>9</InputID><InputType>RGB</InputType>"));
    }

    void doubleClickedGreyRowIsWritten()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        dialog.show();
        child<QTabWidget>(dialog, "tabDataInput")->setCurrentIndex(1);
        doubleClickCell(child<QTableWidget>(dialog, "tblGray8"), 0, 1);
        QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("six"));
        QCOMPARE(child<QLineEdit>(dialog, "edtType")->text(), QStringLiteral("Gray8"));
        pick(dialog, "cmbMemDisk", 5);

        click(dialog, "btnOK");

        QCOMPARE(dialog.getConfigString(),
                 QStringLiteral("<MemDisk>5</MemDisk><InputID>6</InputID><InputType>Gray8</InputType>"));
    }

    void singleClickChoosesNothing()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        dialog.show();
        clickCell(child<QTableWidget>(dialog, "tblRGB"), 0);
        QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QString());
        const BoxAnswer box;
        click(dialog, "btnOK");
        QVERIFY(box.came());
    }

    void doubleClickOnNoRowTakesNothing()
    {
        DlgMemoryDiskConfig dialog(QString(), m_pcStore, nullptr);
        dialog.show();
        doubleClickCell(child<QTableWidget>(dialog, "tblRGB"), 1);

        dialog.on_tblRGB_cellDoubleClicked(7, 0);

        QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QString());
        const BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.text(), QStringLiteral("未选择输入变量."));
        dialog.on_tblGray8_cellDoubleClicked(-1, 0);
        QCOMPARE(child<QLineEdit>(dialog, "edtType")->text(), QStringLiteral("Gray8"));
        const BoxAnswer again;
        click(dialog, "btnOK");
        QVERIFY(again.came());
    }

    void okWithoutInputWarnsAndStaysOpen_data()
    {
        QTest::addColumn<QString>("config");
        QTest::newRow("new step") << QString();
        QTest::newRow("identifier 0") << QStringLiteral("<InputID>0</InputID><InputType>RGB</InputType>");
        QTest::newRow("negative") << QStringLiteral("<InputID>-4</InputID><InputType>RGB</InputType>");
        QTest::newRow("no number") << QStringLiteral("<InputID>x</InputID><InputType>RGB</InputType>");
    }
    void okWithoutInputWarnsAndStaysOpen()
    {
        QFETCH(QString, config);
        DlgMemoryDiskConfig dialog(config, m_pcStore, nullptr);
        dialog.show();
        const BoxAnswer box;

        click(dialog, "btnOK");

        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("未选择输入变量."));
        QVERIFY(box.isInformation());
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getConfigString(), config);
    }

    void reopenedDialogShowsNameAndTypeOfTheInput_data()
    {
        QTest::addColumn<QString>("config");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("type");
        QTest::newRow("colour") << "<InputID>4</InputID><InputType>RGB</InputType>"
                                << "four"
                                << "RGB";
        QTest::newRow("grey") << "<InputID>6</InputID><InputType>Gray8</InputType>"
                              << "six"
                              << "Gray8";
        QTest::newRow("identifier of the other kind") << "<InputID>6</InputID><InputType>RGB</InputType>"
                                                      << ""
                                                      << "RGB";
        QTest::newRow("record is gone") << "<InputID>77</InputID><InputType>RGB</InputType>"
                                        << ""
                                        << "RGB";
        QTest::newRow("other type") << "<InputID>4</InputID><InputType>rgb</InputType>"
                                    << ""
                                    << "rgb";
        QTest::newRow("nothing") << ""
                                 << ""
                                 << "";
    }
    void reopenedDialogShowsNameAndTypeOfTheInput()
    {
        QFETCH(QString, config);
        DlgMemoryDiskConfig dialog(config, m_pcStore, nullptr);
        QTEST(child<QLineEdit>(dialog, "edtName")->text(), "name");
        QTEST(child<QLineEdit>(dialog, "edtType")->text(), "type");
    }

    void reopenedDialogAlwaysStartsAtDisk0AndWritesAnEmptyTypeUnlessARowIsDoubleClicked()
    {
        const QString config = QStringLiteral("<MemDisk>3</MemDisk><InputID>4</InputID><InputType>RGB</InputType>");
        DlgMemoryDiskConfig dialog(config, m_pcStore, nullptr);
        dialog.show();
        QCOMPARE(child<QComboBox>(dialog, "cmbMemDisk")->currentText(), QStringLiteral("内存盘0"));

        click(dialog, "btnOK");

        const QString written = QStringLiteral("<MemDisk>0</MemDisk><InputID>4</InputID><InputType></InputType>");
        QCOMPARE(dialog.getConfigString(), written);
        QByteArray option = written.toUtf8();
        QCOMPARE(QString::fromUtf8(MemoryDisk::execute(option.data(), m_pcStore)),
                 QStringLiteral("不支持的输入数据格式:"));
    }

    void firstRecordIsAnInputToo()
    {
        DlgMemoryDiskConfig dialog(QStringLiteral("<InputID>1</InputID>"), m_pcStore, nullptr);
        dialog.show();

        click(dialog, "btnOK");

        QCOMPARE(dialog.getConfigString(),
                 QStringLiteral("<MemDisk>0</MemDisk><InputID>1</InputID><InputType></InputType>"));
    }

    void cancelAndEscapeLeaveAnEmptyText()
    {
        const QString config = QStringLiteral("<MemDisk>3</MemDisk><InputID>4</InputID><InputType>RGB</InputType>");
        DlgMemoryDiskConfig cancelled(config, m_pcStore, nullptr);
        cancelled.show();
        click(cancelled, "btnCancel");
        QVERIFY(!cancelled.isVisible());
        QCOMPARE(cancelled.result(), static_cast<int>(QDialog::Rejected));
        QCOMPARE(cancelled.getConfigString(), QString());

        DlgMemoryDiskConfig escaped(config, m_pcStore, nullptr);
        escaped.show();
        QTest::keyClick(&escaped, Qt::Key_Escape);
        QVERIFY(!escaped.isVisible());
        QCOMPARE(escaped.getConfigString(), QString());
    }

    void configurationWindowReturnsTheNewTextInTheResultBuffer()
    {
        QByteArray option("<MemDisk>1</MemDisk><InputID>4</InputID><InputType>RGB</InputType>");
        const InDialog<DlgMemoryDiskConfig> user([](DlgMemoryDiskConfig& dialog) {
            QVERIFY(dialog.isModal());
            QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("four"));
            doubleClickCell(child<QTableWidget>(dialog, "tblRGB"), 1);
            click(dialog, "btnOK");
        });

        const char* result = MemoryDisk::showConfigWindow(option.data(), m_pcStore, true);

        QVERIFY(user.came());
        QCOMPARE(QByteArray(result), QByteArray("<MemDisk>0</MemDisk><InputID>9</InputID><InputType>RGB</InputType>"));
        QCOMPARE(static_cast<const void*>(result), static_cast<const void*>(MemoryDisk::s_pchConfigStr.get()));
    }

    void cancelledConfigurationWindowReturnsNothingRatherThanTheOldText()
    {
        QByteArray option("<MemDisk>1</MemDisk><InputID>4</InputID><InputType>RGB</InputType>");
        const InDialog<DlgMemoryDiskConfig> user([](DlgMemoryDiskConfig& dialog) {
            doubleClickCell(child<QTableWidget>(dialog, "tblRGB"), 1);
            click(dialog, "btnCancel");
        });
        QCOMPARE(QByteArray(MemoryDisk::showConfigWindow(option.data(), m_pcStore, false)), QByteArray());
        QVERIFY(user.came());
    }

    void withoutStoreThereIsNothingToChoose()
    {
        const InDialog<DlgMemoryDiskConfig> user([](DlgMemoryDiskConfig& dialog) {
            QCOMPARE(child<QTableWidget>(dialog, "tblRGB")->rowCount(), 0);
            const BoxAnswer box;
            click(dialog, "btnOK");
            QCOMPARE(box.text(), QStringLiteral("未选择输入变量."));
            click(dialog, "btnCancel");
        });
        QCOMPARE(QByteArray(MemoryDisk::showConfigWindow(nullptr, nullptr, true)), QByteArray());
        QVERIFY(user.came());
    }

private:
    static void name(ArithmParam* record, const char* text, const char* describe)
    {
        record->setName(QString::fromUtf8(text));
        record->setDescribe(QString::fromUtf8(describe));
    }

    ArithmParamMgr* m_pcStore = nullptr;
    int m_nRecords = 0;
};

QTEST_MAIN(MemoryDiskConfigTest)
#include "memoryDiskConfigTest.moc"
