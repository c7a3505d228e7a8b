#include "dialogDriver.h"
#include "fileDialog.h"
#include "loading/dlgLoadFile.h"
#include "loading/loading.h"
#include "memoryLimit.h"
#include "pictureSupport.h"

#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

using namespace DialogDriver;
using namespace PictureSupport;

namespace {

QString optionText(const QString& path, int grey, int id)
{
    return QStringLiteral(
               "<FilePath>%1</FilePath><OutputName>src</OutputName><Describe>camera</Describe>"
               "<BeGray>%2</BeGray><PicType>%2</PicType><PicID>%3</PicID>")
        .arg(path)
        .arg(grey)
        .arg(id);
}

}  // namespace

class TestDlgLoadFile : public QObject
{
    Q_OBJECT

    Store m_cStore;
    Folder m_cFolder;
    QString m_strPath;  ///< A good picture.

    static QString textOf(QWidget& dialog, const char* edit) { return child<QLineEdit>(dialog, edit)->text(); }
    static bool isChecked(QWidget& dialog, const char* button)
    {
        return child<QAbstractButton>(dialog, button)->isChecked();
    }

    /// Chooses a file as a user does: through the button and the file dialog.
    static void browse(DlgLoadFile& dialog, const QString& path)
    {
        InDialog<QFileDialog> file([&](QFileDialog& box) { FileDialog::answer(box, path, QDialogButtonBox::Open); });
        click(dialog, "btnBrowser");
        QVERIFY(file.came());
    }

private Q_SLOTS:
    void initTestCase() { m_strPath = m_cFolder.save(numberedPicture(6, 4), "a.png"); }
    void init() { m_cStore = makeStore(); }

    void formIsAsGiven()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("加载文件"));
        QStringList labels;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            labels += label->text();
        QCOMPARE(labels,
                 (QStringList{QStringLiteral("文件路径"), QStringLiteral("输出名称"), QStringLiteral("图片描述")}));
        QCOMPARE(child<QPushButton>(dialog, "btnBrowser")->text(), QStringLiteral("浏  览"));
        QCOMPARE(child<QRadioButton>(dialog, "rbRGB")->text(), QStringLiteral("RGB"));
        QCOMPARE(child<QRadioButton>(dialog, "rbGray")->text(), QStringLiteral("Gray"));
        QCOMPARE(child<QPushButton>(dialog, "btnOK")->text(), QStringLiteral("确 定"));
        QCOMPARE(child<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("取 消"));
        QVERIFY(isChecked(dialog, "rbRGB"));
        QVERIFY(child<QPushButton>(dialog, "btnOK")->isDefault());
        QCOMPARE(textOf(dialog, "edtFilePath"), QString());
    }

    void newStepIsConfiguredThroughTheDialog()
    {
        InDialog<DlgLoadFile> user([&](DlgLoadFile& dialog) {
            browse(dialog, m_strPath);
            QCOMPARE(textOf(dialog, "edtFilePath"), m_strPath);
            type(dialog, "edtOutputName", QStringLiteral("src"));
            type(dialog, "edtPicDescribe", QStringLiteral("camera"));
            click(dialog, "btnOK");
        });
        const QString text = configure<Loading>(QString(), m_cStore.get());
        QVERIFY(user.came());
        const int id = m_cStore->requestParamDIBMap()->firstKey();
        QCOMPARE(text, optionText(m_strPath, 0, id));
        QCOMPARE(m_cStore->findParamDIB(id)->getName(), QStringLiteral("src"));
        QCOMPARE(m_cStore->findParamDIB(id)->getDescribe(), QStringLiteral("camera"));
        QVERIFY(m_cStore->requestParamGray8Map()->isEmpty());
    }

    void newStepMakesAGreyRecord()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        browse(dialog, m_strPath);
        type(dialog, "edtOutputName", QStringLiteral("src"));
        type(dialog, "edtPicDescribe", QStringLiteral("camera"));
        click(dialog, "rbGray");
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
        QVERIFY(!dialog.isVisible());
        const int id = m_cStore->requestParamGray8Map()->firstKey();
        QCOMPARE(dialog.getConfigString(), optionText(m_strPath, 1, id));
        QCOMPARE(m_cStore->findParamGray8(id)->getName(), QStringLiteral("src"));
        QVERIFY(m_cStore->requestParamDIBMap()->isEmpty());
    }

    void fileDialogHasItsCaptionFolderAndFilter()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        InDialog<QFileDialog> file([&](QFileDialog& box) {
            QCOMPARE(box.windowTitle(), QStringLiteral("打开图像文件"));
            QCOMPARE(box.directory().absolutePath(), QDir::currentPath());
            QCOMPARE(box.nameFilters(), QStringList{QStringLiteral("Images (*.png *.bmp *.jpg)")});
            QCOMPARE(box.fileMode(), QFileDialog::ExistingFile);
            FileDialog::answer(box, m_strPath, QDialogButtonBox::Cancel);
        });
        click(dialog, "btnBrowser");
        QVERIFY(file.came());
        QCOMPARE(textOf(dialog, "edtFilePath"), QString());
        QVERIFY(dialog.isVisible());
    }

    void fileDialogAlwaysBeginsInTheWorkingFolder()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        InDialog<QFileDialog> elsewhere([&](QFileDialog& box) {
            box.setDirectory(m_cFolder.path());
            FileDialog::answer(box, m_strPath, QDialogButtonBox::Open);
        });
        click(dialog, "btnBrowser");
        QVERIFY(elsewhere.came());
        InDialog<QFileDialog> again([&](QFileDialog& box) {
            QCOMPARE(box.directory().absolutePath(), QDir::currentPath());
            QCOMPARE(child<QLineEdit>(box, "fileNameEdit")->text(), QString());
            FileDialog::answer(box, m_strPath, QDialogButtonBox::Cancel);
        });
        click(dialog, "btnBrowser");
        QVERIFY(again.came());
    }

    void badFilesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray good = bytesOf(m_strPath);
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("foreign") << QByteArray("no picture at all");
        QTest::newRow("damaged") << good.left(good.size() / 2);
        QImage huge(8193, 8192, QImage::Format_Mono);
        huge.fill(0);
        QTest::newRow("huge") << bytesOf(m_cFolder.save(huge, "huge.png"));
    }

    void badFilesAreRefused()
    {
        QFETCH(QByteArray, bytes);
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        BoxAnswer box;
        browse(dialog, m_cFolder.write(bytes, "bad.png"));
        QTRY_VERIFY(box.came());
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("不支持的文件格式."));
        QVERIFY(!box.isInformation());
        QCOMPARE(textOf(dialog, "edtFilePath"), QString());

        BoxAnswer second;
        click(dialog, "btnOK");
        QCOMPARE(second.text(), QStringLiteral("未选中图片."));
        QVERIFY(dialog.isVisible());
        QCOMPARE(recordNum(m_cStore.get()), 0);
    }

    void fileThatCannotBeConvertedIsRefused()
    {
        if (!MemoryLimit::works())
            QSKIP("Memory cannot be limited under a sanitizer.");
        QImage large(8192, 8192, QImage::Format_Mono);
        large.fill(0);
        const QString path = m_cFolder.save(large, "large.png");
        BoxAnswer box;
        const MemoryLimit limit(100 * MiB);
        DlgLoadFile dialog(optionText(path, 0, 7), m_cStore.get(), nullptr);
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("仅支持8位和24位."));
        QVERIFY(!box.isInformation());
        QCOMPARE(textOf(dialog, "edtFilePath"), QString());
    }

    void okWithoutAFileIsRefused()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("未选中图片."));
        QVERIFY(!box.isInformation());
        QVERIFY(dialog.isVisible());
    }

    void okWithoutAnOutputNameIsRefused()
    {
        DlgLoadFile dialog(optionText(m_strPath, 0, 5), m_cStore.get(), nullptr);
        dialog.show();
        type(dialog, "edtOutputName", QString());
        BoxAnswer box;
        click(dialog, "btnOK");
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("未定义输出名称."));
        QVERIFY(!box.isInformation());
        QVERIFY(dialog.isVisible());
        QCOMPARE(recordNum(m_cStore.get()), 0);
    }

    void okWithoutAStoreDoesNothing()
    {
        DlgLoadFile dialog(optionText(m_strPath, 0, 5), nullptr, nullptr);
        dialog.show();
        click(dialog, "btnOK");
        QVERIFY(dialog.isVisible());
    }

    void oldConfigurationIsShown_data()
    {
        QTest::addColumn<int>("grey");
        QTest::newRow("colour") << 0;
        QTest::newRow("grey") << 1;
    }

    void oldConfigurationIsShown()
    {
        QFETCH(int, grey);
        DlgLoadFile dialog(optionText(m_strPath, grey, 7), m_cStore.get(), nullptr);
        dialog.show();
        QCOMPARE(textOf(dialog, "edtFilePath"), m_strPath);
        QCOMPARE(textOf(dialog, "edtOutputName"), QStringLiteral("src"));
        QCOMPARE(textOf(dialog, "edtPicDescribe"), QStringLiteral("camera"));
        QCOMPARE(isChecked(dialog, "rbGray"), grey == 1);
        QCOMPARE(isChecked(dialog, "rbRGB"), grey == 0);
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), optionText(m_strPath, grey, 7));
        QCOMPARE(recordNum(m_cStore.get()), 0);
    }

    void oldConfigurationOfAMissingFileWarnsAndShowsTheRest()
    {
        BoxAnswer box;
        DlgLoadFile dialog(optionText(m_cFolder.path("gone.png"), 1, 7), m_cStore.get(), nullptr);
        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("不支持的文件格式."));
        QCOMPARE(textOf(dialog, "edtFilePath"), QString());
        QCOMPARE(textOf(dialog, "edtOutputName"), QStringLiteral("src"));
        QVERIFY(isChecked(dialog, "rbGray"));
    }

    void refusedFileKeepsTheLastGoodPathOnPurpose()
    {
        DlgLoadFile dialog(optionText(m_strPath, 0, 7), m_cStore.get(), nullptr);
        dialog.show();
        BoxAnswer box;
        browse(dialog, m_cFolder.write("no picture", "bad.png"));
        QTRY_VERIFY(box.came());
        QCOMPARE(textOf(dialog, "edtFilePath"), QString());
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), optionText(m_strPath, 0, 7));
    }

    void switchToGreyReplacesTheColourRecord()
    {
        const int id = m_cStore->getParamDIB(-1)->getID();
        DlgLoadFile dialog(optionText(m_strPath, 0, id), m_cStore.get(), nullptr);
        dialog.show();
        click(dialog, "rbGray");
        click(dialog, "btnOK");
        QVERIFY(m_cStore->requestParamDIBMap()->isEmpty());
        QCOMPARE(m_cStore->requestParamGray8Map()->size(), 1);
        const ParamGray8* record = m_cStore->requestParamGray8Map()->first();
        QVERIFY(record->getID() != id && record->getID() > 0);
        QCOMPARE(record->getName(), QStringLiteral("src"));
        QCOMPARE(record->getDescribe(), QStringLiteral("camera"));
        QCOMPARE(dialog.getConfigString(), optionText(m_strPath, 1, record->getID()));
    }

    void switchToColourReplacesTheGreyRecord()
    {
        const int id = m_cStore->getParamGray8(-1)->getID();
        DlgLoadFile dialog(optionText(m_strPath, 1, id), m_cStore.get(), nullptr);
        dialog.show();
        click(dialog, "rbRGB");
        click(dialog, "btnOK");
        QVERIFY(m_cStore->requestParamGray8Map()->isEmpty());
        QCOMPARE(m_cStore->requestParamDIBMap()->size(), 1);
        const ParamDIB* record = m_cStore->requestParamDIBMap()->first();
        QVERIFY(record->getID() != id && record->getID() > 0);
        QCOMPARE(record->getName(), QStringLiteral("src"));
        QCOMPARE(dialog.getConfigString(), optionText(m_strPath, 0, record->getID()));
    }

    void recordZeroIsReplacedAndOneOfANegativeIdentifierIsNot()
    {
        m_cStore->getParamDIB(0);
        m_cStore->getParamDIB(-7);
        for (const int id : {0, -7}) {
            DlgLoadFile dialog(optionText(m_strPath, 0, id), m_cStore.get(), nullptr);
            dialog.show();
            click(dialog, "rbGray");
            click(dialog, "btnOK");
        }
        QCOMPARE(m_cStore->requestParamDIBMap()->keys(), QList<int>{-7});
        QCOMPARE(m_cStore->requestParamGray8Map()->size(), 2);
    }

    void existingRecordKeepsItsOldNameOnPurpose()
    {
        ParamDIB* record = m_cStore->getParamDIB(7);
        record->setName(QStringLiteral("old"));
        record->setDescribe(QStringLiteral("older"));
        DlgLoadFile dialog(optionText(m_strPath, 0, 7), m_cStore.get(), nullptr);
        dialog.show();
        type(dialog, "edtOutputName", QStringLiteral("new"));
        click(dialog, "btnOK");
        QVERIFY(dialog.getConfigString().contains(QStringLiteral("<OutputName>new</OutputName>")));
        QCOMPARE(record->getName(), QStringLiteral("old"));
        QCOMPARE(record->getDescribe(), QStringLiteral("older"));
    }

    void otherTypeOfAForeignTextKeepsTheRecord()
    {
        m_cStore->getParamDIB(7);
        for (const char* button : {"rbRGB", "rbGray"}) {
            DlgLoadFile dialog(optionText(m_strPath, 0, 7).replace("<PicType>0", "<PicType>5"), m_cStore.get(),
                               nullptr);
            dialog.show();
            click(dialog, button);
            click(dialog, "btnOK");
            const int grey = button == QByteArray("rbGray") ? 1 : 0;
            QCOMPARE(dialog.getConfigString(), optionText(m_strPath, grey, 7));
            QCOMPARE(m_cStore->requestParamDIBMap()->keys(), QList<int>{7});
            QCOMPARE(recordNum(m_cStore.get()), 1);
        }
    }

    void negativeIdentifierMakesARecord()
    {
        DlgLoadFile dialog(optionText(m_strPath, 1, -1), m_cStore.get(), nullptr);
        dialog.show();
        click(dialog, "btnOK");
        QCOMPARE(m_cStore->requestParamGray8Map()->size(), 1);
        QCOMPARE(dialog.getConfigString(), optionText(m_strPath, 1, m_cStore->requestParamGray8Map()->firstKey()));
    }

    void missingIdentifierIsRecordZeroOnPurpose()
    {
        DlgLoadFile dialog("<FilePath>" + m_strPath + "</FilePath><OutputName>src</OutputName>", m_cStore.get(),
                           nullptr);
        dialog.show();
        click(dialog, "btnOK");
        QCOMPARE(recordNum(m_cStore.get()), 0);
        QVERIFY(dialog.getConfigString().endsWith(QStringLiteral("<PicType>0</PicType><PicID>0</PicID>")));
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
        InDialog<DlgLoadFile> user([&](DlgLoadFile& dialog) {
            if (byEscape)
                QTest::keyClick(&dialog, Qt::Key_Escape);
            else
                click(dialog, "btnCancel");
            QCOMPARE(dialog.result(), int{QDialog::Rejected});
            QCOMPARE(dialog.getConfigString(), QString());
        });
        QCOMPARE(configure<Loading>(optionText(m_strPath, 0, 7), m_cStore.get()), QString());
        QVERIFY(user.came());
        QCOMPARE(recordNum(m_cStore.get()), 0);
    }

    void returnKeyIsOK()
    {
        DlgLoadFile dialog(optionText(m_strPath, 0, 7), m_cStore.get(), nullptr);
        dialog.show();
        child<QLineEdit>(dialog, "edtOutputName")->setFocus();
        QTest::keyClick(child<QLineEdit>(dialog, "edtOutputName"), Qt::Key_Return);
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
    }

    void tabVisitsTheFieldsInOrder()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QStringList visited;
        for (int i = 0; i < 6; ++i) {
            visited += dialog.focusWidget()->objectName();
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(visited,
                 (QStringList{"btnBrowser", "edtOutputName", "edtPicDescribe", "rbRGB", "btnOK", "btnCancel"}));
        QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("btnBrowser"));
    }

    void pathLooksAsThoughNobodyTypesIntoIt()
    {
        const DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        const auto* path = dialog.findChild<QLineEdit*>(QStringLiteral("edtFilePath"));
        QVERIFY(path->isReadOnly());
        QCOMPARE(path->palette().color(QPalette::Base), dialog.palette().color(QPalette::Window));
        QVERIFY(path->palette().color(QPalette::Base) != dialog.palette().color(QPalette::Base));
    }

    void chosenFileLeadsOnToTheName()
    {
        DlgLoadFile dialog(QString(), m_cStore.get(), nullptr);
        dialog.show();
        browse(dialog, m_strPath);
        QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("edtOutputName"));
        QTest::keyClicks(dialog.focusWidget(), QStringLiteral("src"));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
    }

    void returnKeyIsOKOnTheFileButtonToo()
    {
        DlgLoadFile dialog(optionText(m_strPath, 0, 7), m_cStore.get(), nullptr);
        dialog.show();
        child<QWidget>(dialog, "btnBrowser")->setFocus();
        QTest::keyClick(child<QWidget>(dialog, "btnBrowser"), Qt::Key_Return);
        QCOMPARE(dialog.result(), int{QDialog::Accepted});
    }

    void nothingIsClippedOnASmallScreen()
    {
        DlgLoadFile dialog(optionText(m_strPath, 0, 7), m_cStore.get(), nullptr);
        dialog.show();
        QVERIFY(dialog.width() <= 1024 && dialog.height() <= 600);
        for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
            if (widget->isVisible() && !widget->isWindow())
                QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->objectName()));
        }
    }
};

QTEST_MAIN(TestDlgLoadFile)
#include "testDlgLoadFile.moc"
