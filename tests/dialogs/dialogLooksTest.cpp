#include "configDialog.h"
#include "dialogDriver.h"
#include "dialogLooks.h"

#include <QColorDialog>
#include <QHeaderView>
#include <QScopeGuard>
#include <QScreen>

using namespace DialogDriver;
using DialogLooks::clipped;
using DialogLooks::make;
using DialogLooks::openPage;
using DialogLooks::pageNum;

class DialogLooksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_pcStore = ArithmParamMgr::newInstance();
        DialogLooks::fillStore(m_pcStore);
    }
    void cleanupTestCase() { ArithmParamMgr::deleteInstance(m_pcStore); }

    void nothingIsClippedAtItsSmallestSizeWhichFitsASmallScreen_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("percent");
        for (const QString& name : DialogLooks::Names) {
            QTest::newRow(qPrintable(name)) << name << 100;
            QTest::newRow(name.toLatin1() + " in large letters") << name << 150;
        }
    }
    void nothingIsClippedAtItsSmallestSizeWhichFitsASmallScreen()
    {
        QFETCH(QString, name);
        QFETCH(int, percent);
        const QFont usual = QApplication::font();
        const auto restore = qScopeGuard([usual] { QApplication::setFont(usual); });
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * percent / 100);
        QApplication::setFont(font);
        const std::unique_ptr<QDialog> dialog = make(name, m_pcStore);
        dialog->show();
        for (int page = 0; page < pageNum(*dialog); ++page) {
            openPage(*dialog, page);
            dialog->resize(dialog->minimumSizeHint());
            QCoreApplication::processEvents();
            QCOMPARE(clipped(*dialog).join(' '), QString());
            QVERIFY2(dialog->width() <= 1024 && dialog->height() <= 600,
                     qPrintable(QStringLiteral("%1x%2").arg(dialog->width()).arg(dialog->height())));
        }
    }

    void picturesOfTheDialogsLieBesideTheTest_data() { names(); }
    void picturesOfTheDialogsLieBesideTheTest()
    {
        const QString name = QLatin1String(QTest::currentDataTag());
        const std::unique_ptr<QDialog> dialog = make(name, m_pcStore);
        dialog->show();
        for (int page = 0; page < pageNum(*dialog); ++page) {
            openPage(*dialog, page);
            const QString file = QStringLiteral("%1/%2-%3.png").arg(qApp->applicationDirPath(), name).arg(page);
            QVERIFY(dialog->grab().save(file));
        }
    }

    void tablesAndListsTakeTheRoomOfALargerDialog_data() { names(); }
    void tablesAndListsTakeTheRoomOfALargerDialog()
    {
        const std::unique_ptr<QDialog> dialog = make(QLatin1String(QTest::currentDataTag()), m_pcStore);
        dialog->show();
        for (int page = 0; page < pageNum(*dialog); ++page) {
            openPage(*dialog, page);
            for (QAbstractItemView* view : dialog->findChildren<QAbstractItemView*>()) {
                if (!view->isVisible() || view->window() != dialog.get() || qobject_cast<QHeaderView*>(view))
                    continue;
                const QSize before = view->size();
                const QSize size = dialog->size();
                dialog->resize(size + QSize(120, 100));
                QCoreApplication::processEvents();
                QVERIFY(view->width() > before.width());
                QCOMPARE(view->height(), before.height() + 100);
                dialog->resize(size);
                QCoreApplication::processEvents();
            }
        }
    }

    void enterConfirmsAndEscapeCancels_data()
    {
        QTest::addColumn<int>("unused");
        for (const char* name : {"memoryDiskConfig", "dataSource", "drawing"})
            QTest::newRow(name) << 0;
    }
    void enterConfirmsAndEscapeCancels()
    {
        const std::unique_ptr<QDialog> dialog = make(QLatin1String(QTest::currentDataTag()), m_pcStore);
        dialog->show();
        QVERIFY(child<QPushButton>(*dialog, "btnOK")->isDefault());
        const BoxAnswer box;
        QTest::keyClick(dialog.get(), Qt::Key_Return);
        QVERIFY2(box.came(), "OK refuses an untouched dialog");
        QVERIFY(dialog->isVisible());
        QTest::keyClick(dialog.get(), Qt::Key_Escape);
        QVERIFY(!dialog->isVisible());
        QCOMPARE(dialog->result(), static_cast<int>(QDialog::Rejected));
    }

    void tabKeyGoesFromTopToBottom_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("page");
        QTest::addColumn<QStringList>("fields");
        const auto row = [](const char* name, int page, const char* fields) {
            QTest::newRow(QByteArray(name) + ' ' + QByteArray::number(page))
                << QString::fromLatin1(name) << page << QString::fromLatin1(fields).split(' ');
        };
        row("memoryDiskConfig", 0, "qt_tabwidget_tabbar tblRGB cmbMemDisk btnOK btnCancel");
        row("memoryDiskConfig", 1, "qt_tabwidget_tabbar tblGray8 cmbMemDisk btnOK btnCancel");
        row("memoryDiskStatus", 0,
            "cmbMemDisk0 cmbDataType0 btnClear0 cmbMemDisk1 cmbDataType1 btnClear1 cmbMemDisk2 cmbDataType2 btnClear2 "
            "cmbInteval");
        row("dataSource", 0, "lbSourceNames btnSetting edtName edtDescribe cbDataType btnOK btnCancel");
        row("drawing", 0, "qt_tabwidget_tabbar tblRGB cbScaleModeRGB cbPosRGB btnSelectElement btnOK btnCancel");
        row("drawing", 1,
            "qt_tabwidget_tabbar tblGray8 cbScaleModeGray8 cbPosGray8 rbDrawModeNormalGray8 btnSelectElement btnOK "
            "btnCancel");
        row("drawing", 2,
            "qt_tabwidget_tabbar tblGray16 cbScaleModeGray16 cbPosGray16 rbDrawModeNormalGray16 btnSelectElement btnOK "
            "btnCancel");
        row("drawing", 3, "qt_tabwidget_tabbar tblPoints cbSizePoints btnColorPoints btnSelectElement btnOK btnCancel");
        row("drawing", 4,
            "qt_tabwidget_tabbar tblLines cbSizeLines cbDspLengthLines btnColorLines btnSelectElement btnOK btnCancel");
        row("drawing", 5,
            "qt_tabwidget_tabbar tblPolys cbSizePolys cbDspAreaPolys btnColorPolys btnSelectElement btnOK btnCancel");
        row("drawing", 6, "qt_tabwidget_tabbar tblAreas cbDspAreaAreas btnColorAreas btnSelectElement btnOK btnCancel");
        row("drawing", 7,
            "qt_tabwidget_tabbar tblStrings btnColorStrings edtPosX edtPosY edtFontSize btnSelectElement btnOK "
            "btnCancel");
    }
    void tabKeyGoesFromTopToBottom()
    {
        QFETCH(QString, name);
        QFETCH(int, page);
        QFETCH(QStringList, fields);
        const std::unique_ptr<QDialog> dialog = make(name, m_pcStore);
        dialog->show();
        QApplication::setActiveWindow(dialog.get());
        openPage(*dialog, page);
        QCOMPARE(tabOrder(*dialog).join(' '), fields.join(' '));
    }

    void firstFieldHasTheKeyboard_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("memoryDiskConfig") << "qt_tabwidget_tabbar";
        QTest::newRow("memoryDiskStatus") << "cmbMemDisk0";
        QTest::newRow("dataSource") << "lbSourceNames";
        QTest::newRow("drawing") << "qt_tabwidget_tabbar";
    }
    void firstFieldHasTheKeyboard()
    {
        QFETCH(QString, field);
        const std::unique_ptr<QDialog> dialog = make(QLatin1String(QTest::currentDataTag()), m_pcStore);
        dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        QCOMPARE(QApplication::focusWidget()->objectName(), field);
    }

    void nameInputHasNoHelpButton()
    {
        const dlgNameInput dialog;
        QVERIFY(!dialog.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    }

    void openedDialogFitsTheScreenAndKeepsItsFirstField()
    {
        for (const bool accept : {true, false}) {
            QDialog dialog;
            QLineEdit above(&dialog);
            QLineEdit first(&dialog);
            first.setFocus();
            dialog.resize(9000, 8000);
            QSize size;
            bool hasHelp = true;
            const QWidget* focused = nullptr;
            const WhenModal<QDialog> user([&](QDialog& box) {
                size = box.size();
                hasHelp = box.windowFlags().testFlag(Qt::WindowContextHelpButtonHint);
                focused = box.focusWidget();
                box.done(accept ? QDialog::Accepted : QDialog::Rejected);
            });
            QCOMPARE(ConfigDialog::accepted(dialog), accept);
            QVERIFY(user.came());
            QCOMPARE(size, QGuiApplication::primaryScreen()->availableSize());
            QVERIFY(!hasHelp);
            QCOMPARE(focused, static_cast<const QWidget*>(&first));
        }
    }

    void fieldsThatOnlyShowSomethingHaveTheGroundOfTheWindow_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("memoryDiskConfig") << "edtType";
        QTest::newRow("drawing") << "edtDescribe";
    }
    void fieldsThatOnlyShowSomethingHaveTheGroundOfTheWindow()
    {
        QFETCH(QString, field);
        const std::unique_ptr<QDialog> dialog = make(QLatin1String(QTest::currentDataTag()), m_pcStore);
        for (const QString& name : {field, QStringLiteral("edtName")}) {
            const auto* edit = dialog->findChild<QLineEdit*>(name);
            QVERIFY(edit->isReadOnly());
            QCOMPARE(edit->palette().color(QPalette::Base), dialog->palette().color(QPalette::Window));
        }
    }

    void chosenSourceStandsAsHighAsTheFieldsBelow()
    {
        const std::unique_ptr<QDialog> dialog = make(QStringLiteral("dataSource"), m_pcStore);
        dialog->show();
        const auto* chosen = child<QLineEdit>(*dialog, "edtSelectedSource");
        const auto* name = child<QLineEdit>(*dialog, "edtName");
        const auto* describe = child<QLineEdit>(*dialog, "edtDescribe");
        QCOMPARE(chosen->height(), name->height());
        QCOMPARE(name->y() - chosen->y(), describe->y() - name->y());
    }

    void fieldsOfTheSavedRecordEndWhereTheOtherFieldsEnd()
    {
        const std::unique_ptr<QDialog> dialog = make(QStringLiteral("saveFile"), m_pcStore);
        dialog->show();
        const auto* origin = child<QComboBox>(*dialog, "cmbWnd");
        const int before = origin->width();
        pick(*dialog, "cmbWnd", 4);
        QCoreApplication::processEvents();
        const auto* id = child<QLineEdit>(*dialog, "edtSelectedPicID");
        QCOMPARE(id->geometry().right(), child<QPushButton>(*dialog, "btnBrowser")->geometry().right());
        QVERIFY(qAbs(id->width() - child<QLineEdit>(*dialog, "edtPicType")->width()) <= 1);
        QCOMPARE(origin->width(), before);
    }

    void groupsOfTheStatusWindowEndBelowTheirButtons()
    {
        const std::unique_ptr<QDialog> dialog = make(QStringLiteral("memoryDiskStatus"), m_pcStore);
        dialog->show();
        for (const int more : {0, 150}) {
            dialog->resize(dialog->width(), dialog->height() + more);
            QCoreApplication::processEvents();
            const auto* group = child<QGroupBox>(*dialog, "groupBox");
            const auto* button = child<QPushButton>(*dialog, "btnClear0");
            QVERIFY(group->height() - button->geometry().bottom() < button->height());
        }
    }

    void appliedRecordLeadsOnToOK()
    {
        const std::unique_ptr<QDialog> dialog = make(QStringLiteral("drawing"), m_pcStore);
        dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        clickCell(child<QTableWidget>(*dialog, "tblRGB"), 0);
        child<QWidget>(*dialog, "btnSelectElement")->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("btnOK"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(dialog->result(), static_cast<int>(QDialog::Accepted));
    }

    void chosenColourLeadsOn()
    {
        const std::unique_ptr<QDialog> dialog = make(QStringLiteral("drawing"), m_pcStore);
        dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        openPage(*dialog, 7);
        const WhenModal<QColorDialog> colours([](QColorDialog& box) { box.accept(); });
        child<QWidget>(*dialog, "btnColorStrings")->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QVERIFY(colours.came());
        QCOMPARE(dialog->focusWidget()->objectName(), QStringLiteral("edtPosX"));
    }

private:
    static void names()
    {
        QTest::addColumn<int>("unused");
        for (const char* name : {"memoryDiskConfig", "memoryDiskStatus", "dataSource", "drawing"})
            QTest::newRow(name) << 0;
    }

    /// Walks with the Tab key from the first field until it comes round.
    static QStringList tabOrder(QDialog& dialog)
    {
        QWidget* first = dialog.nextInFocusChain();
        while (first && (!(first->focusPolicy() & Qt::TabFocus) || !first->isVisible() || !first->isEnabled()))
            first = first->nextInFocusChain();
        first->setFocus(Qt::TabFocusReason);
        first = QApplication::focusWidget();  // Tabs pass the focus on to their bar.
        QStringList order;
        do {
            order += QApplication::focusWidget()->objectName();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && order.size() < 50);
        return order;
    }

    ArithmParamMgr* m_pcStore = nullptr;
};

QTEST_MAIN(DialogLooksTest)
#include "dialogLooksTest.moc"
