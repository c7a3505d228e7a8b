#include "arithm/arithm.h"

#include <QtTest>

#include <cstring>

namespace {

// What the entry points below were last called with.
QByteArray s_chOption;
ArithmParamMgr* s_pcStore = nullptr;
bool s_bFlag = false;

const char* chineseID()
{
    return "测试.标识";
}

const char* nullID()
{
    return nullptr;
}

char* echoWindow(char* option, ArithmParamMgr* store, bool flag)
{
    static char s_achResult[256];
    s_chOption = option;
    s_pcStore = store;
    s_bFlag = flag;
    std::strcpy(s_achResult, option);
    std::memset(option, 'x', std::strlen(option));
    return s_achResult;
}

char* echoExecute(char* option, ArithmParamMgr* store)
{
    return echoWindow(option, store, false);
}

char* nullWindow(char*, ArithmParamMgr*, bool)
{
    return nullptr;
}

char* nullExecute(char*, ArithmParamMgr*)
{
    return nullptr;
}

ArithmParamMgr* someStore()
{
    static int s_nAnything = 0;
    return reinterpret_cast<ArithmParamMgr*>(&s_nAnything);
}

}  // namespace

class TestArithm : public QObject
{
    Q_OBJECT

    const Arithm m_cEcho{false, chineseID, echoWindow, echoExecute};
    const Arithm m_cNull{true, nullID, nullWindow, nullExecute};
    const Arithm m_cNone{true, nullptr, nullptr, nullptr};

private slots:
    void extensionFlagIsKept()
    {
        QVERIFY(!m_cEcho.IsExtLib());
        QVERIFY(m_cNull.IsExtLib());
    }

    void identifierIsReadAsUtf8() { QCOMPARE(m_cEcho.getID(), QString("测试.标识")); }

    void optionReachesExecuteAsUtf8AndComesBackUnchanged()
    {
        QString option = "标签=甲乙; ü €";
        QCOMPARE(m_cEcho.execute(option, someStore()), QString("标签=甲乙; ü €"));
        QCOMPARE(s_chOption, QByteArray("标签=甲乙; ü €"));
        QCOMPARE(s_pcStore, someStore());
        // The algorithm scribbled on its own buffer only.
        QCOMPARE(option, QString("标签=甲乙; ü €"));
    }

    void optionReachesTheWindowAsUtf8WithTheFlagTrue()
    {
        const QString option = "中文";
        QCOMPARE(m_cEcho.showConfigWindow(option, someStore()), QString("中文"));
        QCOMPARE(s_chOption, QByteArray("中文"));
        QCOMPARE(s_pcStore, someStore());
        QVERIFY(s_bFlag);
        QCOMPARE(option, QString("中文"));
    }

    void emptyOptionIsAnEmptyWritableText()
    {
        QString option;
        QCOMPARE(m_cEcho.execute(option, nullptr), QString());
        QCOMPARE(s_chOption, QByteArray(""));
        QCOMPARE(m_cEcho.showConfigWindow(QString(), nullptr), QString());
    }

    void utf8OptionIsHandedOverAsItIs()
    {
        QByteArray option("中文");
        QCOMPARE(m_cEcho.executeUtf8(option.data(), someStore()), "中文");
        QCOMPARE(option, QByteArray("xxxxxx"));
    }

    void nullTextsCountAsEmpty()
    {
        QString option = "anything";
        QByteArray utf8 = "anything";
        QCOMPARE(m_cNull.getID(), QString());
        QCOMPARE(m_cNull.execute(option, nullptr), QString());
        QVERIFY(!m_cNull.executeUtf8(utf8.data(), nullptr));
        QCOMPARE(m_cNull.showConfigWindow(option, nullptr), QString());
    }

    void missingEntryPointsCountAsEmpty()
    {
        QString option = "anything";
        QByteArray utf8 = "anything";
        QCOMPARE(m_cNone.getID(), QString());
        QCOMPARE(m_cNone.execute(option, nullptr), QString());
        QVERIFY(!m_cNone.executeUtf8(utf8.data(), nullptr));
        QCOMPARE(m_cNone.showConfigWindow(option, nullptr), QString());
    }
};

QTEST_APPLESS_MAIN(TestArithm)
#include "testArithm.moc"
