#include "packLibraries.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

/// The dialogs of steps and sources, driven as a user does.
class TestPackDialogs : public QObject
{
    Q_OBJECT

private slots:
    void newStepMakesItsOutputs_data();
    void newStepMakesItsOutputs();
    void cancelKeepsNothing_data() { newStepMakesItsOutputs_data(); }
    void cancelKeepsNothing();
    void reopenedStepKeepsItsIdentifiers_data() { newStepMakesItsOutputs_data(); }
    void reopenedStepKeepsItsIdentifiers();
    void stepWithoutInputsIsNotAccepted_data() { newStepMakesItsOutputs_data(); }
    void stepWithoutInputsIsNotAccepted();
    void dialogFitsASmallScreen_data() { newStepMakesItsOutputs_data(); }
    void dialogFitsASmallScreen();
    void configuredStepRuns_data() { newStepMakesItsOutputs_data(); }
    void configuredStepRuns();
    void outputsAreDescribedAgainAfterTheStoreWasEmptied_data();
    void outputsAreDescribedAgainAfterTheStoreWasEmptied();
    void tableShowsIdentifierKindNameAndDescription();
    void columnsHaveRoomForTheDescriptionsOfSteps();
    void missingInputIsNotSilentlyReplaced();
    void doubleClickAccepts();
    void parametersReachTheOptionText();
    void unusedParametersAreDisabled();
    void blurChangesTheKindOfItsOutput();
    void sixteenBitGrayStepMakesASixteenBitRecord();
    void enterAcceptsAndEscapeCancels();
    void tabGoesFromTheTableThroughTheSettingsToTheButtons();

    void pictureFolderDialogRoundTrips();
    void chosenFolderLeadsOnToTheRate();
    void testPatternDialogRoundTrips();
    void cancelledSourceDialogGivesTheOldTextBack_data();
    void cancelledSourceDialogGivesTheOldTextBack();
    void sourceDialogFitsASmallScreen_data() { cancelledSourceDialogGivesTheOldTextBack_data(); }
    void sourceDialogFitsASmallScreen();
};

namespace {

template <typename Widget>
Widget* widgetOf(QDialog& dialog, const char* name)
{
    auto* widget = dialog.findChild<Widget*>(QLatin1String(name));
    if (!widget)
        qFatal("no widget %s", name);
    return widget;
}

void press(QDialog& dialog, const char* button)
{
    QTest::mouseClick(widgetOf<QPushButton>(dialog, button), Qt::LeftButton);
}

void acceptDialog(QDialog& dialog)
{
    press(dialog, "btnOK");
}

constexpr int InputNum = 3;

/// What earlier steps left: a colour picture 1 and grey pictures 2 and 3.
void fillStore(ArithmParamMgr& store)
{
    store.getParamDIB(1)->resize(32, 24);
    store.getParamDIB(1)->setName(QStringLiteral("相机"));
    store.getParamDIB(1)->setDescribe(QStringLiteral("原图"));
    for (int id : {2, InputNum}) {
        store.getParamGray8(id)->resize(32, 24);
        std::fill_n(store.getParamGray8(id)->getGray8(), 32 * 24, static_cast<unsigned char>(40));
        store.getParamGray8(id)->setName(QStringLiteral("灰%1").arg(id));
    }
    std::fill_n(store.getParamDIB(1)->getDIB(), 96 * 24, static_cast<unsigned char>(90));
}

StorePtr filledStore()
{
    StorePtr store = newStore();
    fillStore(*store);
    return store;
}

template <typename Record>
void addDescriptions(const QMap<int, Record*>* records, QMap<int, QString>& descriptions)
{
    for (const Record* record : *records) {
        if (record->getID() > InputNum)
            descriptions.insert(record->getID(), record->getDescribe());
    }
}

/// The descriptions of the records behind the inputs, by identifier.
QStringList outputDescriptions(ArithmParamMgr* store)
{
    QMap<int, QString> descriptions;
    addDescriptions(store->requestParamDIBMap(), descriptions);
    addDescriptions(store->requestParamGray8Map(), descriptions);
    addDescriptions(store->requestParamGray16Map(), descriptions);
    addDescriptions(store->requestParamPointsMap(), descriptions);
    addDescriptions(store->requestParamLinesMap(), descriptions);
    addDescriptions(store->requestParamPolysMap(), descriptions);
    addDescriptions(store->requestParamAreasMap(), descriptions);
    addDescriptions(store->requestParamStringsMap(), descriptions);
    return descriptions.values();
}

int recordCount(ArithmParamMgr* store)
{
    return store->requestParamDIBMap()->size() + store->requestParamGray8Map()->size() +
           store->requestParamGray16Map()->size() + store->requestParamPointsMap()->size() +
           store->requestParamLinesMap()->size() + store->requestParamPolysMap()->size() +
           store->requestParamAreasMap()->size() + store->requestParamStringsMap()->size();
}

}  // namespace

void TestPackDialogs::newStepMakesItsOutputs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("outputs");
    for (const char* name : {"toGray", "toGray16", "blur", "threshold", "findContours", "findLines", "findCorners"})
        QTest::newRow(name) << name << 1;
    QTest::newRow("findAreas") << "findAreas" << 2;
}

void TestPackDialogs::newStepMakesItsOutputs()
{
    QFETCH(QString, name);
    QFETCH(int, outputs);
    const StorePtr store = filledStore();
    const QString option = AlgorithmLibrary(name).configure(QString(), store.get(), &acceptDialog);
    const bool colour = name == "toGray" || name == "toGray16" || name == "blur";
    QVERIFY(option.contains(colour ? "<InputType>RGB</InputType><InputID>1</InputID>"
                                   : "<InputType>Gray8</InputType><InputID>2</InputID>"));
    QCOMPARE(recordCount(store.get()), 3 + outputs);
    QVERIFY(option.contains("ID>4</"));
    QCOMPARE(option.contains("ID>5</"), outputs == 2);
}

void TestPackDialogs::cancelKeepsNothing()
{
    QFETCH(QString, name);
    const StorePtr store = filledStore();
    const QString option = AlgorithmLibrary(name).configure(QStringLiteral("<InputID>1</InputID>"), store.get(),
                                                            [](QDialog& dialog) { press(dialog, "btnCancel"); });
    QCOMPARE(option, QString());
    QCOMPARE(recordCount(store.get()), 3);
}

void TestPackDialogs::reopenedStepKeepsItsIdentifiers()
{
    QFETCH(QString, name);
    const StorePtr store = filledStore();
    const AlgorithmLibrary library(name);
    const QString first = library.configure(QString(), store.get(), &acceptDialog);
    const int records = recordCount(store.get());
    const QString second = library.configure("\n" + first + "\n", store.get(), &acceptDialog);
    QCOMPARE(second, first);
    QCOMPARE(recordCount(store.get()), records);
}

void TestPackDialogs::stepWithoutInputsIsNotAccepted()
{
    QFETCH(QString, name);
    const StorePtr store = newStore();
    bool stayed = false;
    QString hint;
    const QString option = AlgorithmLibrary(name).configure(QString(), store.get(), [&](QDialog& dialog) {
        press(dialog, "btnOK");
        stayed = dialog.isVisible();
        hint = widgetOf<QLabel>(dialog, "lblHint")->text();
    });
    QVERIFY(stayed);
    QCOMPARE(hint, QStringLiteral("请先选择输入图像."));
    QCOMPARE(option, QString());
    QCOMPARE(recordCount(store.get()), 0);
}

void TestPackDialogs::dialogFitsASmallScreen()
{
    QFETCH(QString, name);
    const StorePtr store = filledStore();
    QSize size;
    bool isDefault = false;
    AlgorithmLibrary(name).configure(QString(), store.get(), [&](QDialog& dialog) {
        size = dialog.minimumSizeHint().expandedTo(dialog.size());
        isDefault = widgetOf<QPushButton>(dialog, "btnOK")->isDefault();
        QCOMPARE(widgetOf<QPushButton>(dialog, "btnOK")->text(), QStringLiteral("确 定"));
        QCOMPARE(widgetOf<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("取 消"));
    });
    QVERIFY(isDefault);
    QVERIFY2(size.width() <= 1024 && size.height() <= 560, qPrintable(QString::number(size.height())));
}

void TestPackDialogs::configuredStepRuns()
{
    QFETCH(QString, name);
    const StorePtr store = filledStore();
    const AlgorithmLibrary library(name);
    const QString option = library.configure(QString(), store.get(), &acceptDialog);
    QCOMPARE(library.execute("\n" + option + "\n", store.get()), QString());
}

void TestPackDialogs::outputsAreDescribedAgainAfterTheStoreWasEmptied_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("described");
    QTest::newRow("toGray") << "toGray" << QStringList{"彩色转灰度的结果"};
    QTest::newRow("toGray16") << "toGray16" << QStringList{"彩色转16位灰度的结果"};
    QTest::newRow("blur") << "blur" << QStringList{"模糊的结果"};
    QTest::newRow("threshold") << "threshold" << QStringList{"二值化的结果"};
    QTest::newRow("findContours") << "findContours" << QStringList{"查找轮廓的结果"};
    QTest::newRow("findLines") << "findLines" << QStringList{"查找直线的结果"};
    QTest::newRow("findCorners") << "findCorners" << QStringList{"查找角点的结果"};
    QTest::newRow("findAreas") << "findAreas" << QStringList{"查找区域的结果", "查找区域的个数"};
}

void TestPackDialogs::outputsAreDescribedAgainAfterTheStoreWasEmptied()
{
    QFETCH(QString, name);
    QFETCH(QStringList, described);
    const StorePtr store = filledStore();
    const AlgorithmLibrary library(name);
    const QString option = library.configure(QString(), store.get(), &acceptDialog);
    QCOMPARE(outputDescriptions(store.get()), described);
    store->clean();
    fillStore(*store);
    QCOMPARE(outputDescriptions(store.get()), QStringList());
    QCOMPARE(library.execute(option, store.get()), QString());
    QCOMPARE(outputDescriptions(store.get()), described);
}

void TestPackDialogs::tableShowsIdentifierKindNameAndDescription()
{
    const StorePtr store = filledStore();
    QStringList first;
    int rows = 0;
    AlgorithmLibrary("blur").configure(QString(), store.get(), [&](QDialog& dialog) {
        auto* table = widgetOf<QTableWidget>(dialog, "tblInputs");
        rows = table->rowCount();
        for (int column = 0; column < 4; ++column)
            first << table->item(0, column)->text();
    });
    QCOMPARE(rows, 3);
    QCOMPARE(first, (QStringList{"1", "彩色图像", "相机", "原图"}));
}

void TestPackDialogs::columnsHaveRoomForTheDescriptionsOfSteps()
{
    const StorePtr store = filledStore();
    for (int id : {2, 3})
        store->getParamGray8(id)->setDescribe(QStringLiteral("彩色转灰度的结果"));
    AlgorithmLibrary("threshold").configure(QString(), store.get(), [](QDialog& dialog) {
        auto* table = widgetOf<QTableWidget>(dialog, "tblInputs");
        for (int column = 0; column < 4; ++column) {
            const int needed = table->fontMetrics().horizontalAdvance(table->item(0, column)->text());
            QVERIFY2(table->columnWidth(column) > needed, qPrintable(QString::number(column)));
        }
    });
}

void TestPackDialogs::missingInputIsNotSilentlyReplaced()
{
    const StorePtr store = filledStore();
    bool stayed = false;
    AlgorithmLibrary("threshold")
        .configure(QStringLiteral("<InputType>Gray8</InputType><InputID>99</InputID>"), store.get(),
                   [&](QDialog& dialog) {
                       press(dialog, "btnOK");
                       stayed = dialog.isVisible();
                   });
    QVERIFY(stayed);
}

void TestPackDialogs::doubleClickAccepts()
{
    const StorePtr store = filledStore();
    const QString option = AlgorithmLibrary("threshold").configure(QString(), store.get(), [](QDialog& dialog) {
        auto* table = widgetOf<QTableWidget>(dialog, "tblInputs");
        const QPoint place = table->visualItemRect(table->item(1, 0)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    });
    QVERIFY(option.contains("<InputID>3</InputID>"));
}

void TestPackDialogs::parametersReachTheOptionText()
{
    const StorePtr store = filledStore();
    const QString option = AlgorithmLibrary("findAreas").configure(QString(), store.get(), [](QDialog& dialog) {
        widgetOf<QTableWidget>(dialog, "tblInputs")->selectRow(1);
        widgetOf<QSpinBox>(dialog, "spnMinSize")->setValue(12);
        widgetOf<QSpinBox>(dialog, "spnMaxSize")->setValue(345);
        widgetOf<QCheckBox>(dialog, "chkPrint")->setChecked(true);
        widgetOf<QComboBox>(dialog, "cmbWhenNone")->setCurrentIndex(1);
        widgetOf<QSpinBox>(dialog, "spnSkipSteps")->setValue(4);
        widgetOf<QLineEdit>(dialog, "edtAreas")->setText(QStringLiteral("零件"));
        widgetOf<QLineEdit>(dialog, "edtCount")->setText(QStringLiteral("个数"));
        press(dialog, "btnOK");
    });
    QCOMPARE(option, QStringLiteral("<InputType>Gray8</InputType><InputID>3</InputID><AreasID>4</AreasID>"
                                    "<AreasName>零件</AreasName><CountID>5</CountID><CountName>个数</CountName>"
                                    "<MinSize>12</MinSize><MaxSize>345</MaxSize><Print>1</Print>"
                                    "<WhenNone>1</WhenNone><SkipSteps>4</SkipSteps>"));
    QCOMPARE(store->findParamAreas(4)->getName(), QStringLiteral("零件"));
    QCOMPARE(store->findParamStrings(5)->getName(), QStringLiteral("个数"));
    QVERIFY(!store->findParamAreas(4)->getDescribe().isEmpty());
}

void TestPackDialogs::unusedParametersAreDisabled()
{
    const StorePtr store = filledStore();
    QVector<bool> used;
    AlgorithmLibrary("threshold").configure(QString(), store.get(), [&](QDialog& dialog) {
        for (int method = 0; method < 3; ++method) {
            widgetOf<QComboBox>(dialog, "cmbMethod")->setCurrentIndex(method);
            used << widgetOf<QSpinBox>(dialog, "spnValue")->isEnabled()
                 << widgetOf<QSpinBox>(dialog, "spnBlockSize")->isEnabled();
        }
    });
    QCOMPARE(used, (QVector<bool>{true, false, false, false, false, true}));
}

void TestPackDialogs::blurChangesTheKindOfItsOutput()
{
    const StorePtr store = filledStore();
    const AlgorithmLibrary library("blur");
    const QString colour = library.configure(QString(), store.get(), &acceptDialog);
    QVERIFY(store->findParamDIB(4));
    const QString gray = library.configure(colour, store.get(), [](QDialog& dialog) {
        widgetOf<QTableWidget>(dialog, "tblInputs")->selectRow(2);  // colour 1 and 4, grey 2
        press(dialog, "btnOK");
    });
    QVERIFY(gray.contains("<InputType>Gray8</InputType><InputID>2</InputID><OutputID>4</OutputID>"));
    QVERIFY(!store->findParamDIB(4));
    QVERIFY(store->findParamGray8(4));
}

void TestPackDialogs::sixteenBitGrayStepMakesASixteenBitRecord()
{
    const StorePtr store = filledStore();
    QString title;
    const QString option = AlgorithmLibrary("toGray16").configure(QString(), store.get(), [&](QDialog& dialog) {
        title = dialog.windowTitle();
        QCOMPARE(widgetOf<QTableWidget>(dialog, "tblInputs")->rowCount(), 1);  // the colour picture
        acceptDialog(dialog);
    });
    QCOMPARE(title, QStringLiteral("彩色转16位灰度"));
    QCOMPARE(option, QStringLiteral("<InputType>RGB</InputType><InputID>1</InputID><OutputID>4</OutputID>"
                                    "<OutputName>16位灰度图</OutputName>"));
    QVERIFY(store->findParamGray16(4));
    QCOMPARE(store->findParamGray16(4)->getName(), QStringLiteral("16位灰度图"));
}

void TestPackDialogs::enterAcceptsAndEscapeCancels()
{
    const StorePtr store = filledStore();
    const AlgorithmLibrary library("threshold");
    QVERIFY(
        !library.configure(QString(), store.get(), [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); })
             .isEmpty());
    QVERIFY(library.configure(QString(), store.get(), [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); })
                .isEmpty());
}

void TestPackDialogs::tabGoesFromTheTableThroughTheSettingsToTheButtons()
{
    const StorePtr store = filledStore();
    QStringList order;
    AlgorithmLibrary(QStringLiteral("threshold")).configure(QString(), store.get(), [&order](QDialog& dialog) {
        QWidget* widget = widgetOf<QTableWidget>(dialog, "tblInputs");
        const QWidget* first = widget;
        do {
            if (widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) &&
                !widget->objectName().startsWith("qt_"))
                order << widget->objectName();
            widget = widget->nextInFocusChain();
        } while (widget != first);
        dialog.reject();
    });
    QCOMPARE(order,
             (QStringList{"tblInputs", "cmbMethod", "spnValue", "chkInvert", "edtOutput", "btnOK", "btnCancel"}));
}

void TestPackDialogs::pictureFolderDialogRoundTrips()
{
    const SourceLibrary library("pictureFolder");
    const QString config = QStringLiteral("<Folder>图片/a</Folder><Loop>0</Loop><Rate>2.5</Rate>");
    QCOMPARE(library.configure("\n" + config + "\n", &acceptDialog), config);
    QCOMPARE(library.configure(config,
                               [](QDialog& dialog) {
                                   widgetOf<QLineEdit>(dialog, "edtFolder")->setText("b");
                                   widgetOf<QCheckBox>(dialog, "chkLoop")->setChecked(true);
                                   widgetOf<QDoubleSpinBox>(dialog, "spnRate")->setValue(0);
                                   press(dialog, "btnOK");
                               }),
             QStringLiteral("<Folder>b</Folder><Loop>1</Loop><Rate>0</Rate>"));
}

void TestPackDialogs::chosenFolderLeadsOnToTheRate()
{
#if defined(__SANITIZE_THREAD__)
    QSKIP("the thread sanitizer does not see the locks of Qt's file dialog");
#endif
    const QTemporaryDir folder;
    QString focused;
    const QString text = SourceLibrary("pictureFolder").configure(QString(), [&](QDialog& dialog) {
        QTimer::singleShot(100, &dialog, [&folder] {
            auto* box = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QVERIFY(box);
            box->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(folder.path());
            box->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
        });
        press(dialog, "btnBrowse");
        focused = dialog.focusWidget()->objectName();
        press(dialog, "btnOK");
    });
    QCOMPARE(focused, QStringLiteral("spnRate"));
    QVERIFY(text.startsWith("<Folder>" + folder.path() + "</Folder>"));
}

void TestPackDialogs::testPatternDialogRoundTrips()
{
    const SourceLibrary library("testPattern");
    const QString config = QStringLiteral(
        "<Width>320</Width><Height>200</Height><Discs>4</Discs><Bars>1</Bars>"
        "<Text>0</Text><Rate>12.5</Rate>");
    QCOMPARE(library.configure(config, &acceptDialog), config);
    QCOMPARE(library.configure(QString(),
                               [](QDialog& dialog) {
                                   widgetOf<QSpinBox>(dialog, "spnWidth")->setValue(1);
                                   widgetOf<QSpinBox>(dialog, "spnHeight")->setValue(2);
                                   press(dialog, "btnOK");
                               }),
             QStringLiteral("<Width>1</Width><Height>2</Height><Discs>3</Discs><Bars>2</Bars><Text>1</Text>"
                            "<Rate>10</Rate>"));
}

void TestPackDialogs::cancelledSourceDialogGivesTheOldTextBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("pictureFolder") << "pictureFolder";
    QTest::newRow("testPattern") << "testPattern";
}

void TestPackDialogs::cancelledSourceDialogGivesTheOldTextBack()
{
    QFETCH(QString, name);
    const SourceLibrary library(name);
    const QString odd = QStringLiteral("\n任意 <Rate>7</Rate>");
    QCOMPARE(library.configure(odd, [](QDialog& dialog) { press(dialog, "btnCancel"); }), odd);
    QCOMPARE(library.configure(odd, [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }), odd);
}

void TestPackDialogs::sourceDialogFitsASmallScreen()
{
    QFETCH(QString, name);
    QSize size;
    SourceLibrary(name).configure(QString(), [&](QDialog& dialog) {
        size = dialog.minimumSizeHint().expandedTo(dialog.size());
        QVERIFY(widgetOf<QPushButton>(dialog, "btnOK")->isDefault());
    });
    QVERIFY(size.width() <= 1024 && size.height() <= 560);
}

QTEST_MAIN(TestPackDialogs)
#include "tst_packDialogs.moc"
