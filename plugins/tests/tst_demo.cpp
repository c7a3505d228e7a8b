#include "packLibraries.h"
#include "taggedText.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QSet>
#include <QtTest>

#include <algorithm>
#include <map>

/// The demo project runs with this pack: every step succeeds, and every record that is drawn holds something.
class TestDemo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void isInTheFormThatTheProgramSaves();
    void everyTaskHasAViewOfItsOwn();
    void everyStepRunsAndEveryDrawnRecordIsFilled();
    void tasksTogetherShowEveryKindOfRecord();
    void stepOptionsAreAsTheDialogsWriteThem();

private:
    QStringList m_lstTasks;
    QString m_strText;
};

namespace {

/// The bodies of all elements of a kind, in order.
QStringList bodies(const QString& text, const QString& open, const QString& close)
{
    QStringList result;
    int place = 0;
    while ((place = text.indexOf(open, place)) >= 0) {
        const int start = place + open.length();
        const int end = text.indexOf(close, start);
        if (end < 0)
            break;
        result << text.mid(start, end - start);
        place = end;
    }
    return result;
}

QString body(const QString& text, const char* tag)
{
    return bodies(text, QStringLiteral("<-%1->").arg(QLatin1String(tag)),
                  QStringLiteral("</-%1->").arg(QLatin1String(tag)))
        .value(0);
}

QStringList stepsOf(const QString& task)
{
    return bodies(task, QStringLiteral("<-TaskItem->"), QStringLiteral("</-TaskItem->"));
}

/// What a drawing step shows: kind and record.
struct Drawn
{
    int kind;
    int id;
};

Drawn drawnBy(const QString& option)
{
    const TaggedReader reader(option);
    return {reader.number("DataType", -1, 0, 7), reader.number("DataID", -1, 0, 1000)};
}

int elementCount(ArithmParamMgr* store, const Drawn& drawn)
{
    switch (drawn.kind) {
    case 0:
        return store->findParamDIB(drawn.id) ? store->findParamDIB(drawn.id)->getWidth() : -1;
    case 1:
        return store->findParamGray8(drawn.id) ? store->findParamGray8(drawn.id)->getWidth() : -1;
    case 3:
        return store->findParamPoints(drawn.id) ? store->findParamPoints(drawn.id)->getPointNum() : -1;
    case 4:
        return store->findParamLines(drawn.id) ? store->findParamLines(drawn.id)->getLineNum() : -1;
    case 5:
        return store->findParamPolys(drawn.id) ? store->findParamPolys(drawn.id)->getPolyNum() : -1;
    case 6:
        return store->findParamAreas(drawn.id) ? store->findParamAreas(drawn.id)->getAreaNum() : -1;
    case 7:
        return store->findParamStrings(drawn.id) ? store->findParamStrings(drawn.id)->getStringNum() : -1;
    default:
        return -1;
    }
}

const AlgorithmLibrary* algorithm(const QString& id)
{
    static std::map<QString, AlgorithmLibrary> s_mapLibraries;
    if (s_mapLibraries.empty()) {
        for (const char* name :
             {"toGray", "blur", "threshold", "findAreas", "findContours", "findLines", "findCorners"}) {
            const AlgorithmLibrary library{QLatin1String(name)};
            s_mapLibraries.emplace(library.id(), library);
        }
    }
    const auto found = s_mapLibraries.find(id);
    return found == s_mapLibraries.end() ? nullptr : &found->second;
}

const SourceLibrary& sourceOf(const QString& name)
{
    static const SourceLibrary s_cFolder{QStringLiteral("pictureFolder")};
    static const SourceLibrary s_cPattern{QStringLiteral("testPattern")};
    return name == QLatin1String("Picture Folder") ? s_cFolder : s_cPattern;
}

/// Puts the next picture where the workbench would put it.
bool fetch(SourceInstance& source, const TaggedReader& config, ArithmParamMgr* store)
{
    const QString type = config.text("OutputType");
    const int id = config.number("OutputID", 0, 0, 1000);
    const Picture picture = source.waitFor(type == QLatin1String("RGB") ? "RGB" : "Gray8");
    if (picture.isNull())
        return false;
    unsigned char* target;
    if (type == QLatin1String("RGB")) {
        store->getParamDIB(id)->resize(picture.width, picture.height);
        target = store->getParamDIB(id)->getDIB();
    } else {
        store->getParamGray8(id)->resize(picture.width, picture.height);
        target = store->getParamGray8(id)->getGray8();
    }
    std::copy(picture.bytes.begin(), picture.bytes.end(), target);
    return true;
}

}  // namespace

void TestDemo::initTestCase()
{
    QVERIFY(QDir::setCurrent(QStringLiteral(PACK_DEMO_DIR)));
    QFile file(QStringLiteral("demo.lmv"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    m_strText = QString::fromUtf8(file.readAll());
    m_lstTasks = bodies(m_strText, QStringLiteral("<=TaskInfo=>"), QStringLiteral("</=TaskInfo=>"));
    QCOMPARE(m_lstTasks.size(), 4);
}

void TestDemo::isInTheFormThatTheProgramSaves()
{
    QVERIFY(!m_strText.startsWith(QChar(0xFEFF)));
    QVERIFY(!m_strText.contains('\r'));
    QVERIFY(!m_strText.contains("\n\n"));
    QVERIFY(m_strText.endsWith("</=TaskInfo=>\n"));
}

void TestDemo::everyTaskHasAViewOfItsOwn()
{
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(body(m_lstTasks[i], "View"), QString::number(i));
        QCOMPARE(body(m_lstTasks[i], "Kernel"), QStringLiteral("0"));
        QVERIFY(!body(m_lstTasks[i], "TaskName").isEmpty());
    }
}

void TestDemo::everyStepRunsAndEveryDrawnRecordIsFilled()
{
    for (const QString& task : qAsConst(m_lstTasks)) {
        const QString sourceText = body(task, "DataSource");
        const TaggedReader config(sourceText);
        const QString ownConfig = sourceText.mid(sourceText.indexOf("<Config>"));
        SourceInstance source(sourceOf(config.text("DSName")), ownConfig);
        source.start();
        const StorePtr store = newStore();
        for (int pass = 0; pass < 5; ++pass) {
            QVERIFY2(fetch(source, config, store.get()), qPrintable(source.lastError()));
            for (const QString& step : stepsOf(task)) {
                const QString id = body(step, "ArithmID"), option = body(step, "OptionStr");
                if (id == QLatin1String("KW_Drawing")) {
                    QVERIFY2(elementCount(store.get(), drawnBy(option)) > 0, qPrintable(option));
                    continue;
                }
                QVERIFY2(algorithm(id), qPrintable(id));
                const QString result = algorithm(id)->execute(option, store.get());
                QVERIFY2(result.isEmpty() || result.startsWith("<CMD>print:"), qPrintable(result));
                QCOMPARE(body(step, "ClassName"), algorithm(id)->className());
                QCOMPARE(body(step, "ArithmName"), algorithm(id)->displayName());
            }
        }
    }
}

void TestDemo::tasksTogetherShowEveryKindOfRecord()
{
    QSet<int> kinds;
    for (const QString& task : qAsConst(m_lstTasks)) {
        for (const QString& step : stepsOf(task)) {
            if (body(step, "ArithmID") == QLatin1String("KW_Drawing"))
                kinds.insert(drawnBy(body(step, "OptionStr")).kind);
        }
    }
    QCOMPARE(kinds, (QSet<int>{0, 1, 3, 4, 5, 6, 7}));
}

void TestDemo::stepOptionsAreAsTheDialogsWriteThem()
{
    for (const QString& task : qAsConst(m_lstTasks)) {
        const StorePtr store = newStore();
        const TaggedReader config(body(task, "DataSource"));
        store->getParamDIB(1)->resize(8, 8);
        for (int id = 1; id < 4; ++id)
            store->getParamGray8(id)->resize(8, 8);
        for (const QString& step : stepsOf(task)) {
            const AlgorithmLibrary* library = algorithm(body(step, "ArithmID"));
            const QString option = body(step, "OptionStr");
            if (library)
                QCOMPARE(library->configure(option, store.get(), [](QDialog& dialog) { dialog.accept(); }),
                         option.trimmed());
        }
    }
}

QTEST_MAIN(TestDemo)
#include "tst_demo.moc"
