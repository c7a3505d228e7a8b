#include "dialogDriver.h"
#include "drawing/dlgDrawingConfig.h"
#include "drawing/drawing.h"
#include "paramStore/arithmParamMgr.h"

#include <QGroupBox>
#include <QLabel>

using namespace DialogDriver;

namespace {

const QStringList Kinds{"RGB", "Gray8", "Gray16", "Points", "Lines", "Polys", "Areas", "Strings"};

QString optionText(int kind, int id, const QString& body)
{
    return QStringLiteral("<DataType>%1</DataType><DataID>%2</DataID><Config>%3</Config>").arg(kind).arg(id).arg(body);
}

QTableWidget* tableOf(QWidget& dialog, int kind)
{
    return child<QTableWidget>(dialog, ("tbl" + Kinds.at(kind)).toLatin1());
}

void openPage(QWidget& dialog, int kind)
{
    child<QTabWidget>(dialog, "tabDataType")->setCurrentIndex(kind);
}

QString text(QWidget& dialog, const char* edit)
{
    return child<QLineEdit>(dialog, edit)->text();
}

}  // namespace

/// Which record is chosen, and what OK makes of it.
class DrawingDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_pcStore = ArithmParamMgr::newInstance();
        // Two records of each kind: 20 + kind, and 10 + kind, which comes first.
        for (int first : {20, 10}) {
            const QList<ArithmParam*> records{
                m_pcStore->getParamDIB(first),        m_pcStore->getParamGray8(first + 1),
                m_pcStore->getParamGray16(first + 2), m_pcStore->getParamPoints(first + 3),
                m_pcStore->getParamLines(first + 4),  m_pcStore->getParamPolys(first + 5),
                m_pcStore->getParamAreas(first + 6),  m_pcStore->getParamStrings(first + 7)};
            for (ArithmParam* record : records) {
                record->setName(QStringLiteral("name%1").arg(record->getID()));
                record->setDescribe(QStringLiteral("text%1").arg(record->getID()));
            }
        }
    }
    void cleanup()
    {
        QCOMPARE(recordNum(m_pcStore), 16);  // The dialog only lists.
        ArithmParamMgr::deleteInstance(m_pcStore);
    }

    void formHasItsTextsAndItems()
    {
        DlgDrawingConfig dialog(QString(), m_pcStore, nullptr);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("配置绘制对象"));
        QCOMPARE(tabsOf(dialog, "tabDataType"), Kinds);
        QCOMPARE(itemsOf(dialog, "cbDataType"), Kinds);
        QCOMPARE(child<QPushButton>(dialog, "btnSelectElement")->text(), QStringLiteral("应  用"));
        QCOMPARE(child<QPushButton>(dialog, "btnOK")->text(), QStringLiteral("确  定"));
        QCOMPARE(child<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("取  消"));
        for (int kind = 0; kind < Kinds.size(); ++kind)
            QCOMPARE(headersOf(tableOf(dialog, kind)), (QStringList{"名称", "描述"}));
        for (const char* group : {"Gray8", "Gray16"}) {
            const QByteArray radio = QByteArray("rbDrawModeNormal") + group;
            const auto* box = qobject_cast<QGroupBox*>(child<QRadioButton>(dialog, radio)->parentWidget());
            QVERIFY(box);
            QCOMPARE(box->title(), QStringLiteral("绘制方式"));
        }
    }

    void noteNamesTheSelectButtonByAnotherWordThanItsCaption()
    {
        DlgDrawingConfig dialog(QString(), m_pcStore, nullptr);
        QCOMPARE(child<QLabel>(dialog, "label_10")->text(),
                 QStringLiteral("注意:修改绘制方式后，请点击\"选定对象\"以使选择生效."));
        QCOMPARE(child<QPushButton>(dialog, "btnSelectElement")->text(), QStringLiteral("应  用"));
    }

    void controlsHaveTheirLabels_data()
    {
        QTest::addColumn<QString>("label");
        for (const char* combo : {"cbScaleModeRGB", "cbScaleModeGray8", "cbScaleModeGray16"})
            QTest::newRow(combo) << QStringLiteral("缩放方式");
        for (const char* combo : {"cbPosRGB", "cbPosGray8", "cbPosGray16"})
            QTest::newRow(combo) << QStringLiteral("位置");
        for (const char* button :
             {"btnColorPoints", "btnColorLines", "btnColorPolys", "btnColorAreas", "btnColorStrings"})
            QTest::newRow(button) << QStringLiteral("颜色");
        QTest::newRow("edtPosX") << QStringLiteral("横向");
        QTest::newRow("edtPosY") << QStringLiteral("纵向");
        QTest::newRow("edtFontSize") << QStringLiteral("字体大小");
        QTest::newRow("cbDataType") << QStringLiteral("数据类型");
        QTest::newRow("edtName") << QStringLiteral("数据名称");
        QTest::newRow("edtDescribe") << QStringLiteral("数据描述");
    }
    void controlsHaveTheirLabels()
    {
        DlgDrawingConfig dialog(QString(), m_pcStore, nullptr);
        QWidget* control = child<QWidget>(dialog, QTest::currentDataTag());
        QString found;
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            if (label->buddy() == control)
                found = label->text();
        }
        QTEST(found, "label");
    }

    void tablesListTheRecordsOfTheirKindInAscendingIdentifierOrder()
    {
        DlgDrawingConfig dialog(QString(), m_pcStore, nullptr);
        for (int kind = 0; kind < Kinds.size(); ++kind) {
            QTableWidget* table = tableOf(dialog, kind);
            QCOMPARE(table->rowCount(), 2);
            for (int row : {0, 1}) {
                const QString id = QString::number(10 * (row + 1) + kind);
                QCOMPARE(rowOf(table, row), (QStringList{"name" + id, "text" + id}));
            }
        }
    }

    void chosenRecordOfEachKindIsWritten_data() { eachKind(); }
    void chosenRecordOfEachKindIsWritten()
    {
        QFETCH(int, kind);
        DlgDrawingConfig dialog(QString(), m_pcStore, nullptr);
        dialog.show();
        openPage(dialog, kind);
        clickCell(tableOf(dialog, kind), 1);
        click(dialog, "btnSelectElement");
        const QString id = QString::number(20 + kind);
        QCOMPARE(text(dialog, "edtName"), "name" + id);
        QCOMPARE(text(dialog, "edtDescribe"), "text" + id);
        QCOMPARE(child<QComboBox>(dialog, "cbDataType")->currentIndex(), kind);

        click(dialog, "btnOK");

        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
        const QString start = QStringLiteral("<DataType>%1</DataType><DataID>%2</DataID><Config>").arg(kind).arg(id);
        QVERIFY2(dialog.getConfigString().startsWith(start), qPrintable(dialog.getConfigString()));
        QVERIFY(dialog.getConfigString().endsWith(QStringLiteral("</Config>")));
        QVERIFY(!dialog.getConfigString().contains(QStringLiteral("<View>")));
    }

    void openingShowsTheChosenRecord_data() { eachKind(); }
    void openingShowsTheChosenRecord()
    {
        QFETCH(int, kind);
        DlgDrawingConfig dialog(optionText(kind, 20 + kind, QString()), m_pcStore, nullptr);
        QCOMPARE(child<QTabWidget>(dialog, "tabDataType")->currentIndex(), kind);
        QCOMPARE(child<QComboBox>(dialog, "cbDataType")->currentIndex(), kind);
        QCOMPARE(tableOf(dialog, kind)->selectionModel()->selectedRows().value(0).row(), 1);
        QCOMPARE(text(dialog, "edtName"), QStringLiteral("name%1").arg(20 + kind));
        QCOMPARE(text(dialog, "edtDescribe"), QStringLiteral("text%1").arg(20 + kind));
    }

    void selectionMadeOnOpeningCountsForOkWithoutTheSelectButton_data() { eachKind(); }
    void selectionMadeOnOpeningCountsForOkWithoutTheSelectButton()
    {
        QFETCH(int, kind);
        const QString option = optionText(kind, 20 + kind, QStringLiteral("<Scale>3</Scale><other>kept</other>"));
        DlgDrawingConfig dialog(QStringLiteral("<View>2</View>") + option, m_pcStore, nullptr);
        dialog.show();
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
        QCOMPARE(dialog.getConfigString(), option);
    }

    void changedDrawModeWithoutTheSelectButtonKeepsThePreviousBody()
    {
        const QString option =
            optionText(1, 11, QStringLiteral("<Scale>0</Scale><Pos>0</Pos><DrawMode><Val>0</Val></DrawMode>"));
        DlgDrawingConfig dialog(option, m_pcStore, nullptr);
        dialog.show();
        click(dialog, "rbDrawModeMaskGray8");
        QVERIFY(child<QRadioButton>(dialog, "rbDrawModeMaskGray8")->isChecked());
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), option);
    }

    void otherRowWithoutTheSelectButtonKeepsThePreviousRecord()
    {
        const QString option = optionText(0, 10, QString());
        DlgDrawingConfig dialog(option, m_pcStore, nullptr);
        dialog.show();
        clickCell(tableOf(dialog, 0), 1);
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), option);
    }

    void okWithoutRecordWarnsAndStaysOpen_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("new step") << QString();
        QTest::newRow("record is not listed") << optionText(0, 99, QString());
        QTest::newRow("identifier of another kind") << optionText(0, 21, QString());
        QTest::newRow("identifier is no number") << QStringLiteral("<DataType>0</DataType><DataID>x</DataID>");
        QTest::newRow("minus one") << optionText(0, -1, QString());
        QTest::newRow("kind above the last") << optionText(8, 10, QString());
        QTest::newRow("negative kind") << optionText(-1, 10, QString());
        QTest::newRow("kind is no number") << QStringLiteral("<DataType>x</DataType><DataID>10</DataID>");
    }
    void okWithoutRecordWarnsAndStaysOpen()
    {
        QFETCH(QString, option);
        DlgDrawingConfig dialog(option, m_pcStore, nullptr);
        dialog.show();
        const BoxAnswer box;

        click(dialog, "btnOK");

        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("未选中绘制对象."));
        QVERIFY(!box.isInformation());
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getConfigString(), QString());
    }

    void kindThatIsNoneIsOpenedAsANewStep()
    {
        DlgDrawingConfig fresh(QString(), m_pcStore, nullptr);
        for (const int kind : {-1, 8, 9}) {
            DlgDrawingConfig dialog(optionText(kind, 10, QStringLiteral("<Scale>2</Scale>")), m_pcStore, nullptr);
            for (const char* combo : {"cbDataType", "cbScaleModeRGB"})
                QCOMPARE(child<QComboBox>(dialog, combo)->currentIndex(),
                         child<QComboBox>(fresh, combo)->currentIndex());
        }
    }

    void recordWithoutNameCountsAsNotChosen()
    {
        m_pcStore->getParamDIB(10)->setName(QString());
        DlgDrawingConfig dialog(QString(), m_pcStore, nullptr);
        dialog.show();
        clickCell(tableOf(dialog, 0), 0);
        click(dialog, "btnSelectElement");
        const BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.text(), QStringLiteral("未选中绘制对象."));
    }

    void missingRowIsWarnedOfAndThenAcceptedWithAnEmptyText()
    {
        DlgDrawingConfig dialog(optionText(0, 10, QString()), m_pcStore, nullptr);
        dialog.show();
        openPage(dialog, 3);
        click(dialog, "btnSelectElement");  // No row of this page is selected.
        QCOMPARE(text(dialog, "edtName"), QStringLiteral("name10"));
        const BoxAnswer box;

        click(dialog, "btnOK");

        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("所选择的数据对象不存在!"));
        QVERIFY(!box.isInformation());
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
        QCOMPARE(dialog.getConfigString(), QString());
    }

    void selectButtonOnAnEmptyPageIsHarmless()
    {
        ArithmParamMgr* empty = ArithmParamMgr::newInstance();
        {
            DlgDrawingConfig dialog(QString(), empty, nullptr);
            dialog.show();
            for (int kind = 0; kind < Kinds.size(); ++kind) {
                openPage(dialog, kind);
                click(dialog, "btnSelectElement");
                QCOMPARE(child<QComboBox>(dialog, "cbDataType")->currentIndex(), kind);
                QCOMPARE(text(dialog, "edtName"), QString());
            }
        }
        QCOMPARE(recordNum(empty), 0);
        ArithmParamMgr::deleteInstance(empty);
    }

    void configurationWindowReturnsTheNewTextInTheResultBuffer()
    {
        QByteArray option = optionText(0, 10, QStringLiteral("<Scale>1</Scale>")).toUtf8();
        const InDialog<DlgDrawingConfig> user([](DlgDrawingConfig& dialog) {
            QVERIFY(dialog.isModal());
            clickCell(tableOf(dialog, 0), 1);
            click(dialog, "btnSelectElement");
            click(dialog, "btnOK");
        });

        const char* result = Drawing::showConfigWindow(option.data(), m_pcStore, true);

        QVERIFY(user.came());
        QCOMPARE(QString::fromUtf8(result), optionText(0, 20, QStringLiteral("<Scale>1</Scale><Pos>0</Pos>")));
        QCOMPARE(static_cast<const void*>(result), static_cast<const void*>(Drawing::s_pchConfigStr.get()));
    }

    void cancelAndEscapeReturnTheEmptyText_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("cancel") << false;
        QTest::newRow("escape") << true;
    }
    void cancelAndEscapeReturnTheEmptyText()
    {
        QFETCH(bool, escape);
        QByteArray option = optionText(0, 10, QString()).toUtf8();
        const InDialog<DlgDrawingConfig> user([escape](DlgDrawingConfig& dialog) {
            click(dialog, "btnSelectElement");
            if (escape)
                QTest::keyClick(&dialog, Qt::Key_Escape);
            else
                click(dialog, "btnCancel");
            QVERIFY(!dialog.isVisible());
        });
        QCOMPARE(QByteArray(Drawing::showConfigWindow(option.data(), m_pcStore, false)), QByteArray());
        QVERIFY(user.came());
    }

    void withoutStoreThereIsNothingToChoose()
    {
        QByteArray option = optionText(5, 10, QStringLiteral("<DspArea>1</DspArea>")).toUtf8();
        const InDialog<DlgDrawingConfig> user([](DlgDrawingConfig& dialog) {
            click(dialog, "btnSelectElement");
            const BoxAnswer box;
            click(dialog, "btnOK");
            QCOMPARE(box.text(), QStringLiteral("未选中绘制对象."));
            click(dialog, "btnCancel");
        });
        QCOMPARE(QByteArray(Drawing::showConfigWindow(option.data(), nullptr, true)), QByteArray());
        QVERIFY(user.came());
        const InDialog<DlgDrawingConfig> second([](DlgDrawingConfig& dialog) { click(dialog, "btnCancel"); });
        QCOMPARE(QByteArray(Drawing::showConfigWindow(nullptr, nullptr, true)), QByteArray());
        QVERIFY(second.came());
    }

private:
    static void eachKind()
    {
        QTest::addColumn<int>("kind");
        for (int kind = 0; kind < Kinds.size(); ++kind)
            QTest::newRow(Kinds.at(kind).toLatin1()) << kind;
    }

    ArithmParamMgr* m_pcStore = nullptr;
};

QTEST_MAIN(DrawingDialogTest)
#include "drawingDialogTest.moc"
