#include "dataSource/dataSourceInstance.h"
#include "dataSource/dlgDataSource.h"
#include "dialogDriver.h"
#include "paramStore/arithmParamMgr.h"
#include "pluginFolders.h"

#include <QLabel>

using namespace DialogDriver;

namespace {

using Instance = std::unique_ptr<DataSource::DataSourceInstance>;

const QString Style =
    QStringLiteral("background-color: rgb(220, 220, 220);\nborder:1px solid rgb(200, 200, 200);\nborder-radius:5px;");

QString savedText(const QString& kind, const QString& type, const QString& id, const QString& config)
{
    return QStringLiteral(
               "<DSName>%1</DSName><OutputName>img</OutputName><OutputDescribe>cam</OutputDescribe>"
               "<OutputType>%2</OutputType><OutputID>%3</OutputID><Config>%4</Config>")
        .arg(kind, type, id, config);
}

QString selectedKind(QWidget& dialog)
{
    const QList<QListWidgetItem*> items = child<QListWidget>(dialog, "lbSourceNames")->selectedItems();
    return items.isEmpty() ? QString() : items.first()->text();
}

/// Notes every change of a dialog's enabled state.
class EnabledLog : public QObject
{
public:
    explicit EnabledLog(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange)
            m_lstStates += static_cast<QWidget*>(object)->isEnabled();
        return false;
    }
    QList<bool> m_lstStates;
};

}  // namespace

class DataSourceDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        PluginFolders::clear();
        m_strScripted = PluginFolders::addSource(QStringLiteral("sourceScripted"));
        m_pcKinds = DataSource::getInstance()->getKinds();
        QCOMPARE(m_pcKinds->keys(), (QStringList{"Memory Disk 0", "Memory Disk 1", "Memory Disk 2", "Memory Disk 3",
                                                 "Memory Disk 4", "Memory Disk 5", "Test Scripted"}));
    }
    void init() { m_pcStore = ArithmParamMgr::newInstance(); }
    void cleanup()
    {
        PluginFolders::setDialogResult(m_strScripted, nullptr);
        ArithmParamMgr::deleteInstance(m_pcStore);
    }

    void formHasItsTextsAndItems()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, QString(), nullptr);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Dialog"));
        QCOMPARE(child<QLabel>(dialog, "label")->text(), QStringLiteral("数据来源"));
        QCOMPARE(child<QLabel>(dialog, "label_2")->text(), QStringLiteral("数据名称"));
        QCOMPARE(child<QLabel>(dialog, "label_3")->text(), QStringLiteral("数据描述"));
        QCOMPARE(child<QLabel>(dialog, "label_4")->text(), QStringLiteral("选 定 源"));
        QCOMPARE(child<QLabel>(dialog, "label_5")->text(), QStringLiteral("数据类型"));
        QCOMPARE(child<QPushButton>(dialog, "btnSetting")->text(), QStringLiteral("使用数据源"));
        QCOMPARE(child<QPushButton>(dialog, "btnOK")->text(), QStringLiteral("确  定"));
        QCOMPARE(child<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("取  消"));
        QCOMPARE(itemsOf(dialog, "cbDataType"), (QStringList{"RGB", "Gray8"}));
        const auto* selected = child<QLineEdit>(dialog, "edtSelectedSource");
        QVERIFY(selected->isReadOnly());
        QCOMPARE(selected->styleSheet(), Style);
    }

    void kindsAreListedInKeyOrder()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, QString(), nullptr);
        const auto* list = child<QListWidget>(dialog, "lbSourceNames");
        QCOMPARE(list->count(), 7);
        QCOMPARE(list->item(0)->text(), QStringLiteral("Memory Disk 0"));
        QCOMPARE(list->item(5)->text(), QStringLiteral("Memory Disk 5"));
        QCOMPARE(list->item(6)->text(), QStringLiteral("Test Scripted"));
    }

    void emptyTextOpensUnselectedAndEmptyAndOkRefuses()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, QString(), nullptr);
        dialog.show();
        QCOMPARE(selectedKind(dialog), QString());
        for (const char* edit : {"edtName", "edtDescribe", "edtSelectedSource"})
            QCOMPARE(child<QLineEdit>(dialog, edit)->text(), QString());
        QCOMPARE(child<QComboBox>(dialog, "cbDataType")->currentText(), QStringLiteral("RGB"));

        const BoxAnswer noName;
        click(dialog, "btnOK");
        QCOMPARE(noName.title(), QStringLiteral("警告"));
        QCOMPARE(noName.text(), QStringLiteral("数据名称不能为空"));
        QVERIFY(noName.isInformation());
        QVERIFY(dialog.isVisible());

        type(dialog, "edtName", QStringLiteral("img"));
        const BoxAnswer noSource;
        click(dialog, "btnOK");
        QCOMPARE(noSource.title(), QStringLiteral("警告"));
        QCOMPARE(noSource.text(), QStringLiteral("无数据源"));
        QVERIFY(noSource.isInformation());
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.getConfigString(), QString());
        QCOMPARE(recordNum(m_pcStore), 0);
    }

    void savedTextFillsTheFormButNeedsTheSettingButtonAgain()
    {
        const QString text = savedText("Memory Disk 2", "Gray8", "3", "kept");
        DlgDataSource dialog(m_pcKinds, m_pcStore, text, nullptr);
        dialog.show();
        QCOMPARE(selectedKind(dialog), QStringLiteral("Memory Disk 2"));
        QCOMPARE(child<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("img"));
        QCOMPARE(child<QLineEdit>(dialog, "edtDescribe")->text(), QStringLiteral("cam"));
        QCOMPARE(child<QComboBox>(dialog, "cbDataType")->currentText(), QStringLiteral("Gray8"));
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QString());
        QVERIFY(!dialog.getDataSourceInstance());

        const BoxAnswer noSource;
        click(dialog, "btnOK");
        QCOMPARE(noSource.text(), QStringLiteral("无数据源"));
        QCOMPARE(dialog.getConfigString(), text);

        click(dialog, "btnSetting");
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QStringLiteral("Memory Disk 2"));
        click(dialog, "btnOK");
        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
        QCOMPARE(dialog.getConfigString(), text);
    }

    void chosenSourceLeadsOnToItsName()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Memory Disk 2", "RGB", "3", ""), nullptr);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        child<QWidget>(dialog, "btnSetting")->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QStringLiteral("Memory Disk 2"));
        QCOMPARE(dialog.focusWidget()->objectName(), QStringLiteral("edtName"));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
    }

    void kindIsSelectedByItsExactNameOnly()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("memory disk 2", "RGB", "3", ""), nullptr);
        QCOMPARE(selectedKind(dialog), QString());
    }

    void settingWithoutSelectionDoesNothing()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, QString(), nullptr);
        dialog.show();
        click(dialog, "btnSetting");
        QVERIFY(!dialog.getDataSourceInstance());
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QString());
    }

    void settingOfAnUnknownKindWarns()
    {
        const QMap<QString, DataSource::DataSourceInfo*> gone{{QStringLiteral("Gone"), nullptr}};
        DlgDataSource dialog(&gone, m_pcStore, savedText("Gone", "RGB", "3", ""), nullptr);
        dialog.show();
        const BoxAnswer box;

        click(dialog, "btnSetting");

        QCOMPARE(box.title(), QStringLiteral("警告"));
        QCOMPARE(box.text(), QStringLiteral("创建数据源实例失败."));
        QVERIFY(box.isInformation());
        QVERIFY(dialog.isVisible());
        QVERIFY(!dialog.getDataSourceInstance());
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QString());
    }

    void settingThatFailsKeepsTheInstanceOfBefore()
    {
        const QMap<QString, DataSource::DataSourceInfo*> kinds{{QStringLiteral("Gone"), nullptr},
                                                               {QStringLiteral("Test Scripted"), nullptr}};
        DlgDataSource dialog(&kinds, m_pcStore, savedText("Test Scripted", "RGB", "3", ""), nullptr);
        dialog.show();
        click(dialog, "btnSetting");
        const int instance = PluginFolders::lastInstance(m_strScripted);
        clickRow(child<QListWidget>(dialog, "lbSourceNames"), 0);
        const BoxAnswer box;

        click(dialog, "btnSetting");

        QCOMPARE(box.text(), QStringLiteral("创建数据源实例失败."));
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QStringLiteral("Test Scripted"));
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", instance), 0);
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Test Scripted", "RGB", "3", ""));
    }

    void settingCreatesWithAnEmptyConfigurationAndThenHandsOverTheKeptOne()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Test Scripted", "RGB", "3", "size=8x8"), nullptr);
        dialog.show();
        const EnabledLog log(&dialog);
        const int dialogs = PluginFolders::sourceCalls(m_strScripted, "showConfigDlg", 0);

        click(dialog, "btnSetting");

        const int instance = PluginFolders::lastInstance(m_strScripted);
        // At creation, for the kept text, and after the kind's own dialog.
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "setConfig", instance), 3);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "setConfig to ", instance), 1);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "setConfig to size=8x8", instance), 2);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "showConfigDlg", 0), dialogs + 1);
        QCOMPARE(scriptedText("testDialogConfig"), QByteArray("size=8x8"));
        QCOMPARE(log.m_lstStates, (QList<bool>{false, true}));
        QVERIFY(dialog.isEnabled());
    }

    void kindsOwnAnswerReplacesTheKeptConfigurationUnlessItIsEmpty_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("written");
        QTest::newRow("new text") << QByteArray("size=2x2") << "size=2x2";
        QTest::newRow("empty") << QByteArray("") << "size=8x8";
    }
    void kindsOwnAnswerReplacesTheKeptConfigurationUnlessItIsEmpty()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, written);
        PluginFolders::setDialogResult(m_strScripted, answer.constData());
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Test Scripted", "RGB", "3", "size=8x8"), nullptr);
        dialog.show();
        click(dialog, "btnSetting");
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Test Scripted", "RGB", "3", written));
    }

    void settingTwiceDeletesTheFirstInstance()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, QString(), nullptr);
        dialog.show();
        clickRow(child<QListWidget>(dialog, "lbSourceNames"), 6);
        click(dialog, "btnSetting");
        const int first = PluginFolders::lastInstance(m_strScripted);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", first), 0);

        click(dialog, "btnSetting");

        const int second = PluginFolders::lastInstance(m_strScripted);
        QVERIFY(second > first);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", first), 1);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", second), 0);

        clickRow(child<QListWidget>(dialog, "lbSourceNames"), 1);
        click(dialog, "btnSetting");
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", second), 1);
        QCOMPARE(child<QLineEdit>(dialog, "edtSelectedSource")->text(), QStringLiteral("Memory Disk 1"));
    }

    void newSourceGetsAFreshRecordOfItsType_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("RGB") << 0;
        QTest::newRow("Gray8") << 1;
    }
    void newSourceGetsAFreshRecordOfItsType()
    {
        QFETCH(int, type);
        m_pcStore->reserveID(1);
        QString config;
        const InDialog<DlgDataSource> user([type](DlgDataSource& dialog) {
            QVERIFY(dialog.isModal());
            clickRow(child<QListWidget>(dialog, "lbSourceNames"), 6);
            click(dialog, "btnSetting");
            ::DialogDriver::type(dialog, "edtName", QStringLiteral("a"));
            ::DialogDriver::type(dialog, "edtDescribe", QStringLiteral("b"));
            pick(dialog, "cbDataType", type);
            click(dialog, "btnOK");
        });

        const Instance instance(DataSource::getInstance()->newDataSource(m_pcStore, config));

        QVERIFY(user.came());
        QVERIFY(instance);
        const QString name = QLatin1String(QTest::currentDataTag());
        QCOMPARE(config, QStringLiteral("<DSName>Test Scripted</DSName><OutputName>a</OutputName>"
                                        "<OutputDescribe>b</OutputDescribe><OutputType>%1</OutputType>"
                                        "<OutputID>2</OutputID><Config></Config>")
                             .arg(name));
        QCOMPARE(instance->getDataType(), name);
        QCOMPARE(instance->getDataID(), 2);
        QCOMPARE(recordNum(m_pcStore), 1);
        QVERIFY(instance->execute());
        const ArithmParam* record = type == 0 ? static_cast<ArithmParam*>(m_pcStore->findParamDIB(2))
                                              : static_cast<ArithmParam*>(m_pcStore->findParamGray8(2));
        QVERIFY(record);
        QCOMPARE(record->getName(), QStringLiteral("a"));
        QCOMPARE(record->getDescribe(), QStringLiteral("b"));
    }

    void rememberedIdentifierIsAskedForAndWrittenBack_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<int>("record");
        QTest::newRow("7") << "7" << 7;
        QTest::newRow("zero") << "0" << 0;
        QTest::newRow("negative") << "-5" << -5;
    }
    void rememberedIdentifierIsAskedForAndWrittenBack()
    {
        QFETCH(QString, id);
        QFETCH(int, record);
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Memory Disk 0", "RGB", id, ""), nullptr);
        dialog.show();
        click(dialog, "btnSetting");
        QCOMPARE(recordNum(m_pcStore), 0);  // Only OK makes the record.
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Memory Disk 0", "RGB", id, ""));
        QCOMPARE(m_pcStore->requestParamDIBMap()->keys(), QList<int>{record});
    }

    void identifierThatIsNoNumberCountsAsNone()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Memory Disk 0", "RGB", "seven", ""), nullptr);
        dialog.show();
        click(dialog, "btnSetting");
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Memory Disk 0", "RGB", "1", ""));
    }

    void savedGray16ReopensOnRgbAndIsSavedAsRgb()
    {
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Memory Disk 0", "Gray16", "4", ""), nullptr);
        dialog.show();
        QCOMPARE(child<QComboBox>(dialog, "cbDataType")->currentText(), QStringLiteral("RGB"));
        click(dialog, "btnSetting");
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Memory Disk 0", "RGB", "4", ""));
        QVERIFY(m_pcStore->findParamDIB(4));
        QVERIFY(!m_pcStore->findParamGray16(4));
    }

    void typeThatTheFormDoesNotOfferGetsItsRecordOrNone_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("Gray16") << "4";
        QTest::newRow("Gray32") << "-1";
        QTest::newRow("") << "-1";
    }
    void typeThatTheFormDoesNotOfferGetsItsRecordOrNone()
    {
        QFETCH(QString, id);
        const QString name = QLatin1String(QTest::currentDataTag());
        DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Memory Disk 0", "RGB", "4", ""), nullptr);
        dialog.show();
        child<QComboBox>(dialog, "cbDataType")->addItem(name);
        pick(dialog, "cbDataType", 2);
        click(dialog, "btnSetting");
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Memory Disk 0", name, id, ""));
        QCOMPARE(m_pcStore->findParamGray16(4) != nullptr, id == "4");
    }

    void cancelAndEscapeDeleteTheInstanceAndChangeNothing_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("cancel") << false;
        QTest::newRow("escape") << true;
    }
    void cancelAndEscapeDeleteTheInstanceAndChangeNothing()
    {
        QFETCH(bool, escape);
        const QString before = savedText("Test Scripted", "RGB", "3", "size=8x8");
        QString config = before;
        const InDialog<DlgDataSource> user([escape](DlgDataSource& dialog) {
            type(dialog, "edtName", QStringLiteral("other"));
            click(dialog, "btnSetting");
            if (escape)
                QTest::keyClick(&dialog, Qt::Key_Escape);
            else
                click(dialog, "btnCancel");
            QVERIFY(!dialog.isVisible());
            QVERIFY(!dialog.getDataSourceInstance());
        });

        const Instance instance(DataSource::getInstance()->newDataSource(m_pcStore, config));

        QVERIFY(user.came());
        QVERIFY(!instance);
        QCOMPARE(config, before);
        QCOMPARE(recordNum(m_pcStore), 0);
        const int number = PluginFolders::lastInstance(m_strScripted);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", number), 1);
    }

    void handedOutInstanceOutlivesTheDialog()
    {
        Instance instance;
        {
            DlgDataSource dialog(m_pcKinds, m_pcStore, savedText("Test Scripted", "RGB", "3", "size=6x5"), nullptr);
            dialog.show();
            click(dialog, "btnSetting");
            click(dialog, "btnOK");
            instance.reset(dialog.getDataSourceInstance());
            QCOMPARE(dialog.getDataSourceInstance(), instance.get());
        }
        const int number = PluginFolders::lastInstance(m_strScripted);
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", number), 0);
        QVERIFY(instance->execute());
        QCOMPARE(m_pcStore->findParamDIB(3)->getWidth(), 6);
        instance.reset();
        QCOMPARE(PluginFolders::sourceCalls(m_strScripted, "removeInstance", number), 1);
    }

    void withoutStoreTheIdentifierIsMinusOne()
    {
        DlgDataSource dialog(m_pcKinds, nullptr, savedText("Memory Disk 0", "RGB", "4", ""), nullptr);
        dialog.show();
        click(dialog, "btnSetting");
        click(dialog, "btnOK");
        QCOMPARE(dialog.getConfigString(), savedText("Memory Disk 0", "RGB", "-1", ""));
    }

private:
    QByteArray scriptedText(const char* function)
    {
        return PluginFolders::function<const char* (*)()>(m_strScripted, function)();
    }

    QString m_strScripted;
    const QMap<QString, DataSource::DataSourceInfo*>* m_pcKinds = nullptr;
    ArithmParamMgr* m_pcStore = nullptr;
};

QTEST_MAIN(DataSourceDialogTest)
#include "dataSourceDialogTest.moc"
