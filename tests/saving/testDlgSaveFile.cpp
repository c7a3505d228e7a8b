#include "dialogDriver.h"
#include "fileDialog.h"
#include "saving/dlgSaveFile.h"
#include "saving/dlgSelectPic.h"
#include "savingSupport.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>

using namespace DialogDriver;
using namespace PictureSupport;

namespace {

const char* const RecordText =
    "<BasePath>/data/out</BasePath><StringID>cam</StringID><IsStringID>0</IsStringID><Separator>_</Separator>"
    "<Identity>1</Identity><Format>2</Format><Exg>0</Exg><Wnd>4</Wnd><PicType>RGB</PicType><PicID>3</PicID>";

const char* const ViewText =
    "<BasePath>/data</BasePath><IsStringID>1</IsStringID><Identity>2</Identity><Format>1</Format><Exg>1</Exg><Wnd>2</"
    "Wnd>";

}  // namespace

class TestDlgSaveFile : public QObject
{
    Q_OBJECT

    Store m_cStore;

    static QString textOf(QWidget& dialog, const char* edit) { return child<QLineEdit>(dialog, edit)->text(); }
    static int indexOf(QWidget& dialog, const char* combo) { return child<QComboBox>(dialog, combo)->currentIndex(); }

    static QList<bool> pictureFieldsShown(QWidget& dialog)
    {
        return {child<QWidget>(dialog, "btnSelectPic")->isVisible(), child<QWidget>(dialog, "edtPicType")->isVisible(),
                child<QWidget>(dialog, "edtSelectedPicID")->isVisible()};
    }

private Q_SLOTS:
    void init() { m_cStore = makeStore(); }

    void formIsAsGiven()
    {
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("保存文件"));
        QStringList labels;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            labels += label->text();
        QCOMPARE(labels, (QStringList{QStringLiteral("文件名："), QStringLiteral("分隔符"), QStringLiteral("字符串ID"),
                                      QStringLiteral("基本路径"), QStringLiteral("图像来源")}));
        QCOMPARE(dialog.findChild<QGroupBox*>()->title(), QStringLiteral("存在字符串"));
        QCOMPARE(headersOf(child<QTableWidget>(dialog, "tblStrings")),
                 (QStringList{QStringLiteral("名称"), QStringLiteral("ID"), QStringLiteral("内容")}));
        QCOMPARE(itemsOf(dialog, "cmbIdentity"),
                 (QStringList{QStringLiteral("时间"), QStringLiteral("递增数字"), QStringLiteral("无")}));
        QCOMPARE(itemsOf(dialog, "cmbFormat"), (QStringList{"JPG", "PNG", "BMP"}));
        QCOMPARE(itemsOf(dialog, "cmbWnd"),
                 (QStringList{QStringLiteral("视窗1"), QStringLiteral("视窗2"), QStringLiteral("视窗3"),
                              QStringLiteral("视窗4"), QStringLiteral("内存图片")}));
        QCOMPARE(child<QCheckBox>(dialog, "cbExchange")->text(), QStringLiteral("分隔符前后内容对调"));
        QCOMPARE(child<QPushButton>(dialog, "btnBrowser")->text(), QStringLiteral("浏  览"));
        QCOMPARE(child<QPushButton>(dialog, "btnSelectPic")->text(), QStringLiteral("选择图像"));
        QCOMPARE(child<QPushButton>(dialog, "btnOK")->text(), QStringLiteral("确 定"));
        QCOMPARE(child<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("取 消"));
        for (const char* name : {"tblStrings", "edtStringID", "chkIsStringID"})
            QCOMPARE(child<QWidget>(dialog, name)->toolTip(), QStringLiteral("使用ID对应的字符串组成文件名"));
    }

    void defaultsOfANewStep()
    {
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        QCOMPARE(textOf(dialog, "edtSeparator"), QStringLiteral("-"));
        QCOMPARE(textOf(dialog, "edtStringID"), QString());
        QCOMPARE(indexOf(dialog, "cmbIdentity"), 0);
        QCOMPARE(indexOf(dialog, "cmbFormat"), 0);
        QCOMPARE(indexOf(dialog, "cmbWnd"), 0);
        QVERIFY(!child<QCheckBox>(dialog, "chkIsStringID")->isChecked());
        QVERIFY(!child<QCheckBox>(dialog, "cbExchange")->isChecked());
        QCOMPARE(pictureFieldsShown(dialog), (QList<bool>{false, false, false}));
        QVERIFY(child<QPushButton>(dialog, "btnOK")->isDefault());
    }

    void stringsAreListedInOrderOfTheirIdentifiers()
    {
        m_cStore->getParamStrings(20)->setName(QStringLiteral("编号"));
        m_cStore->getParamStrings(20)->replaceAll({QStringLiteral("零件").toUtf8(), "second"});
        m_cStore->getParamStrings(4)->setName(QStringLiteral("empty"));
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        const auto* table = child<QTableWidget>(dialog, "tblStrings");
        QCOMPARE(table->rowCount(), 2);
        QCOMPARE(rowOf(table, 0), (QStringList{"empty", "4", ""}));
        QCOMPARE(rowOf(table, 1), (QStringList{QStringLiteral("编号"), "20", QStringLiteral("零件")}));
    }

    void emptyStoreShowsAnEmptyTable()
    {
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        QCOMPARE(child<QTableWidget>(dialog, "tblStrings")->rowCount(), 0);
        DlgSaveFile withoutStore(QString(), nullptr, nullptr);
        QCOMPARE(child<QTableWidget>(withoutStore, "tblStrings")->rowCount(), 0);
        QCOMPARE(recordNum(m_cStore.get()), 0);
    }

    void oldConfigurationOfARecordComesBack()
    {
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        QCOMPARE(textOf(dialog, "edtBasePath"), QStringLiteral("/data/out"));
        QCOMPARE(textOf(dialog, "edtStringID"), QStringLiteral("cam"));
        QCOMPARE(textOf(dialog, "edtSeparator"), QStringLiteral("_"));
        QVERIFY(!child<QCheckBox>(dialog, "chkIsStringID")->isChecked());
        QCOMPARE(indexOf(dialog, "cmbIdentity"), 1);
        QCOMPARE(indexOf(dialog, "cmbFormat"), 2);
        QCOMPARE(indexOf(dialog, "cmbWnd"), 4);
        QCOMPARE(textOf(dialog, "edtPicType"), QStringLiteral("RGB"));
        QCOMPARE(textOf(dialog, "edtSelectedPicID"), QStringLiteral("3"));
        QCOMPARE(pictureFieldsShown(dialog), (QList<bool>{true, true, true}));
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
        QCOMPARE(dialog.getConfigString(), QString(RecordText));
    }

    void oldConfigurationOfAViewComesBack()
    {
        DlgSaveFile dialog(ViewText, m_cStore.get(), nullptr);
        dialog.show();
        QCOMPARE(textOf(dialog, "edtStringID"), QString());
        QCOMPARE(textOf(dialog, "edtSeparator"), QString());
        QVERIFY(child<QCheckBox>(dialog, "chkIsStringID")->isChecked());
        QVERIFY(child<QCheckBox>(dialog, "cbExchange")->isChecked());
        QCOMPARE(indexOf(dialog, "cmbWnd"), 2);
        QCOMPARE(pictureFieldsShown(dialog), (QList<bool>{false, false, false}));
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), QString(ViewText));
    }

    void itemsThatDoNotExistFallBackToTheFirst_data()
    {
        QTest::addColumn<QString>("numbers");
        QTest::newRow("far away") << "<Identity>9</Identity><Format>-1</Format><Wnd>17</Wnd>";
        QTest::newRow("just behind the last") << "<Identity>3</Identity><Format>3</Format><Wnd>5</Wnd>";
    }

    void itemsThatDoNotExistFallBackToTheFirst()
    {
        QFETCH(QString, numbers);
        DlgSaveFile dialog("<BasePath>/d</BasePath>" + numbers, m_cStore.get(), nullptr);
        QCOMPARE(indexOf(dialog, "cmbIdentity"), 0);
        QCOMPARE(indexOf(dialog, "cmbFormat"), 0);
        QCOMPARE(indexOf(dialog, "cmbWnd"), 0);
    }

    void newStepIsConfiguredThroughTheDialog()
    {
        InDialog<DlgSaveFile> user([](DlgSaveFile& dialog) {
            type(dialog, "edtStringID", QStringLiteral("12"));
            click(dialog, "chkIsStringID");
            type(dialog, "edtSeparator", QStringLiteral("--"));
            pick(dialog, "cmbIdentity", 1);
            pick(dialog, "cmbFormat", 1);
            click(dialog, "cbExchange");
            type(dialog, "edtBasePath", QStringLiteral("/tmp/out"));
            pick(dialog, "cmbWnd", 3);
            click(dialog, "btnOK");
        });
        QCOMPARE(configure<Saving>(QString(), m_cStore.get()),
                 QStringLiteral("<BasePath>/tmp/out</BasePath><StringID>12</StringID><IsStringID>1</IsStringID>"
                                "<Separator>--</Separator><Identity>1</Identity><Format>1</Format><Exg>1</Exg>"
                                "<Wnd>3</Wnd>"));
        QVERIFY(user.came());
    }

    void okWithoutABasePathIsRefused()
    {
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("未选中基本路径."));
        QVERIFY(!box.isInformation());
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getConfigString(), QString());
    }

    void badPictureIdentifierIsRefused_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("empty") << "";
        QTest::newRow("word") << "three";
        QTest::newRow("negative") << "-1";
        QTest::newRow("fraction") << "1.5";
        QTest::newRow("beyond numbers") << "99999999999";
    }

    void badPictureIdentifierIsRefused()
    {
        QFETCH(QString, id);
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        type(dialog, "edtSelectedPicID", id);
        BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("错误的图像ID."));
        QVERIFY(!box.isInformation());
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getConfigString(), QString(RecordText));
    }

    void pictureZeroIsAPictureLikeOthers()
    {
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        type(dialog, "edtSelectedPicID", "0");
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
        QVERIFY(dialog.getConfigString().contains("<PicID>0</PicID>"));
    }

    void anyPictureTypeIsTakenOnPurpose()
    {
        for (const char* picType : {"", "DIB", "Gray", "nonsense"}) {
            DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
            dialog.show();
            type(dialog, "edtPicType", picType);
            click(dialog, "btnOK");
            QCOMPARE(dialog.result(), int{QDialog::Accepted});
            QVERIFY(dialog.getConfigString().contains(QStringLiteral("<PicType>%1</PicType>").arg(picType)));
        }
    }

    void pictureFieldsShowForTheLastSourceOnly()
    {
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        for (int source = 0; source < 5; ++source) {
            pick(dialog, "cmbWnd", source);
            const bool isRecord = source == 4;
            QCOMPARE(pictureFieldsShown(dialog), (QList<bool>{isRecord, isRecord, isRecord}));
        }
    }

    void folderIsChosenInTheFolderDialog()
    {
        const Folder folder;
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        InDialog<QFileDialog> browser([&](QFileDialog& box) {
            QCOMPARE(box.windowTitle(), QStringLiteral("选取目录"));
            QVERIFY(box.testOption(QFileDialog::ShowDirsOnly));
            FileDialog::answer(box, folder.path(), QDialogButtonBox::Open);
        });
        click(dialog, "btnBrowser");
        QVERIFY(browser.came());
        QCOMPARE(textOf(dialog, "edtBasePath"), folder.path());
        QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("cmbWnd"));

        InDialog<QFileDialog> cancelled(
            [](QFileDialog& box) { FileDialog::answer(box, "/", QDialogButtonBox::Cancel); });
        click(dialog, "btnBrowser");
        QVERIFY(cancelled.came());
        QCOMPARE(textOf(dialog, "edtBasePath"), folder.path());
    }

    void pictureIsChosenInItsDialog_data()
    {
        QTest::addColumn<int>("tab");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("id");
        QTest::newRow("colour") << 0 << "RGB"
                                << "8";
        QTest::newRow("grey") << 1 << "Gray"
                              << "9";
    }

    void pictureIsChosenInItsDialog()
    {
        QFETCH(int, tab);
        m_cStore->getParamDIB(2);
        m_cStore->getParamDIB(8);
        m_cStore->getParamGray8(5);
        m_cStore->getParamGray8(9);
        DlgSaveFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        pick(dialog, "cmbWnd", 4);
        InDialog<DlgSelectPic> chooser([tab](DlgSelectPic& box) {
            auto* tabs = child<QTabWidget>(box, "tabPic");
            QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, Qt::NoModifier, tabs->tabBar()->tabRect(tab).center());
            clickCell(child<QTableWidget>(box, tab == 0 ? "tblRGB" : "tblGray"), 1);
            click(box, "btnOK");
        });
        click(dialog, "btnSelectPic");
        QVERIFY(chooser.came());
        QTEST(textOf(dialog, "edtPicType"), "type");
        QTEST(textOf(dialog, "edtSelectedPicID"), "id");
    }

    void chosenPictureLeadsOnToOK()
    {
        m_cStore->getParamDIB(2);
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        InDialog<DlgSelectPic> chooser([](DlgSelectPic& box) {
            clickCell(child<QTableWidget>(box, "tblRGB"), 0);
            click(box, "btnOK");
        });
        child<QWidget>(dialog, "btnSelectPic")->setFocus();
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
        QVERIFY(chooser.came());
        QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("btnOK"));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
    }

    void cancelledChoiceLeavesThePicture()
    {
        m_cStore->getParamDIB(2);
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        InDialog<DlgSelectPic> chooser([](DlgSelectPic& box) {
            clickCell(child<QTableWidget>(box, "tblRGB"), 0);
            click(box, "btnCancel");
        });
        click(dialog, "btnSelectPic");
        QVERIFY(chooser.came());
        QCOMPARE(textOf(dialog, "edtSelectedPicID"), QStringLiteral("3"));
    }

    void cancelReturnsNothing_data()
    {
        QTest::addColumn<bool>("byEscape");
        QTest::newRow("button") << false;
        QTest::newRow("Escape") << true;
    }

    void cancelReturnsNothing()
    {
        QFETCH(bool, byEscape);
        InDialog<DlgSaveFile> user([byEscape](DlgSaveFile& dialog) {
            if (byEscape)
                QTest::keyClick(&dialog, Qt::Key_Escape);
            else
                click(dialog, "btnCancel");
            QCOMPARE(dialog.result(), int{QDialog::Rejected});
            QCOMPARE(dialog.getConfigString(), QString());
        });
        QCOMPARE(configure<Saving>(RecordText, m_cStore.get()), QString());
        QVERIFY(user.came());
    }

    void returnKeyIsOK_data()
    {
        QTest::addColumn<int>("unused");
        for (const char* name : {"edtBasePath", "btnBrowser", "btnSelectPic", "cmbWnd"})
            QTest::newRow(name) << 0;
    }

    void returnKeyIsOK()
    {
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        auto* field = child<QWidget>(dialog, QTest::currentDataTag());
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
    }

    void firstFieldIsTheNameOfTheFile()
    {
        QString focused;
        InDialog<DlgSaveFile> user([&focused](DlgSaveFile& dialog) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            focused = QApplication::focusWidget()->objectName();
        });
        QCOMPARE(configure<Saving>(QString(), m_cStore.get()), QString());
        QVERIFY(user.came());
        QCOMPARE(focused, QStringLiteral("edtStringID"));
    }

    void tabVisitsTheFieldsInOrder()
    {
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        child<QWidget>(dialog, "tblStrings")->setFocus();
        QStringList visited;
        for (int i = 0; i < 15; ++i) {
            visited += dialog.focusWidget()->objectName();
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(visited, (QStringList{"tblStrings", "edtStringID", "edtSeparator", "cmbIdentity", "cmbFormat",
                                       "chkIsStringID", "cbExchange", "edtBasePath", "btnBrowser", "cmbWnd",
                                       "btnSelectPic", "edtPicType", "edtSelectedPicID", "btnOK", "btnCancel"}));
    }

    void nothingIsClippedAndTheTableGrows()
    {
        DlgSaveFile dialog(RecordText, m_cStore.get(), nullptr);
        dialog.show();
        QVERIFY(dialog.width() <= 1024 && dialog.height() <= 600);
        for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->parentWidget() == &dialog)
                QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->objectName()));
        }
        const int before = child<QTableWidget>(dialog, "tblStrings")->height();
        dialog.resize(dialog.width() + 100, dialog.height() + 100);
        QTRY_COMPARE(child<QTableWidget>(dialog, "tblStrings")->height(), before + 100);
    }
};

QTEST_MAIN(TestDlgSaveFile)
#include "testDlgSaveFile.moc"
