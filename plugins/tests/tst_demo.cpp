#include "packLibraries.h"
#include "taggedText.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QImage>
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
    void tasksTogetherDrawEveryKindOfRecordEvenTheOneNeverShown();
    void everyBuiltInAlgorithmTakesPart();
    void whatIsSavedIsLimited();
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
    case 2:
        return store->findParamGray16(drawn.id) ? store->findParamGray16(drawn.id)->getWidth() : -1;
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
             {"toGray", "toGray16", "blur", "threshold", "findAreas", "findContours", "findLines", "findCorners"}) {
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

bool isMemoryDisk(const QString& source)
{
    return source.startsWith(QLatin1String("Memory Disk "));
}

/// The workbench's own steps, as far as this pack has to do with them: what they read is there.
QString problemOfBuiltIn(const QString& id, const QString& option, ArithmParamMgr* store)
{
    const TaggedReader reader(option);
    if (id == QLatin1String("KW_Drawing"))
        return elementCount(store, drawnBy(option)) > 0 ? QString() : QStringLiteral("nothing to draw");
    if (id == QLatin1String("KW_Loading")) {
        const QImage image(reader.text("FilePath"));
        store->getParamGray8(reader.number("PicID", 0, 0, 1000))->resize(image.width(), image.height());
        return image.isNull() ? QStringLiteral("nothing to load") : QString();
    }
    if (id == QLatin1String("KW_Saving") && reader.number("Wnd", 0, 0, 4) < 4)
        return QString();
    const bool saving = id == QLatin1String("KW_Saving");
    const int kind = reader.text(saving ? "PicType" : "InputType") == QLatin1String("RGB") ? 0 : 1;
    const int record = reader.number(saving ? "PicID" : "InputID", 0, 0, 1000);
    return elementCount(store, {kind, record}) > 0 ? QString() : QStringLiteral("no picture");
}

/// What a task wrote into its memory disk: a grey picture.
Picture handedOver(const QString& option, ArithmParamMgr* store)
{
    ParamGray8* record = store->getParamGray8(TaggedReader(option).number("InputID", 0, 0, 1000));
    Picture picture;
    picture.width = record->getWidth();
    picture.height = record->getHeight();
    picture.bytes = QByteArray(reinterpret_cast<const char*>(record->getGray8()), picture.width * picture.height);
    return picture;
}

/// Puts the next picture where the workbench would put it.
bool put(const Picture& picture, const TaggedReader& config, ArithmParamMgr* store)
{
    const QString type = config.text("OutputType");
    const int id = config.number("OutputID", 0, 0, 1000);
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
    Picture onDisk;
    for (const QString& task : qAsConst(m_lstTasks)) {
        const QString sourceText = body(task, "DataSource");
        const TaggedReader config(sourceText);
        const QString ownConfig = sourceText.mid(sourceText.indexOf("<Config>"));
        const bool fromDisk = isMemoryDisk(config.text("DSName"));
        SourceInstance source(sourceOf(config.text("DSName")), fromDisk ? QString() : ownConfig);
        source.start();
        const StorePtr store = newStore();
        for (int pass = 0; pass < 5; ++pass) {
            const QByteArray type = config.text("OutputType").toUtf8();
            QVERIFY2(put(fromDisk ? onDisk : source.waitFor(type.constData()), config, store.get()),
                     qPrintable(source.lastError()));
            for (const QString& step : stepsOf(task)) {
                const QString id = body(step, "ArithmID"), option = body(step, "OptionStr");
                if (id.startsWith(QLatin1String("KW_"))) {
                    const QString problem = problemOfBuiltIn(id, option, store.get());
                    QVERIFY2(problem.isEmpty(), qPrintable(problem + option));
                    if (id == QLatin1String("KW_MemoryDisk"))
                        onDisk = handedOver(option, store.get());
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

void TestDemo::tasksTogetherDrawEveryKindOfRecordEvenTheOneNeverShown()
{
    QSet<int> kinds;
    for (const QString& task : qAsConst(m_lstTasks)) {
        for (const QString& step : stepsOf(task)) {
            if (body(step, "ArithmID") == QLatin1String("KW_Drawing"))
                kinds.insert(drawnBy(body(step, "OptionStr")).kind);
        }
    }
    QCOMPARE(kinds, (QSet<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

void TestDemo::everyBuiltInAlgorithmTakesPart()
{
    QSet<QString> identifiers;
    for (const QString& id : bodies(m_strText, QStringLiteral("<-ArithmID->"), QStringLiteral("</-ArithmID->")))
        identifiers.insert(id);
    for (const char* id : {"KW_MemoryDisk", "KW_Drawing", "KW_Saving", "KW_Loading"})
        QVERIFY2(identifiers.contains(QLatin1String(id)), id);
    QVERIFY(m_strText.contains("<DSName>Memory Disk 0</DSName>"));
}

void TestDemo::whatIsSavedIsLimited()
{
    for (const QString& task : qAsConst(m_lstTasks)) {
        for (const QString& step : stepsOf(task)) {
            if (body(step, "ArithmID") != QLatin1String("KW_Saving"))
                continue;
            const int times = body(step, "MaxExeTimes").toInt();
            QVERIFY2(times == 999999999 || (times > 0 && times <= 5), qPrintable(step));
            QCOMPARE(TaggedReader(body(step, "OptionStr")).text("BasePath"), QStringLiteral("out"));
        }
    }
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
