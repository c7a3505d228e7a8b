#include "savedText.h"

#include "taskMgr/projectText.h"
#include "taskMgr/taskMgr.h"
#include "taskMgr/taskText.h"

#include <QtTest>

#include <algorithm>
#include <random>

namespace {

/// All that a task text says, in one comparable list.
QStringList contents(const TaskText& task)
{
    QStringList list = {task.m_strName, QString::number(task.m_nKernel), QString::number(task.m_nView),
                        task.m_strDataSource};
    for (const TaskItem& item : task.m_lstSteps)
        list += {QString::number(item.m_nMaxExeTimes),
                 QString::number(item.m_nExeTimes),
                 item.m_strArithmID,
                 item.m_strOption,
                 item.m_strClassName,
                 item.m_strArithmName,
                 item.m_strDescribe};
    QList<int> ids = task.m_setNamedIDs.values();
    std::sort(ids.begin(), ids.end());
    for (const int id : qAsConst(ids))
        list += QStringLiteral("names %1").arg(id);
    return list;
}

const char* const Head = "<-TaskName->t</-TaskName->\n<-Kernel->2</-Kernel->\n<-View->1</-View->\n";
const char* const Source = "<-DataSource->\n<DSName>x</DSName>\n</-DataSource->\n";
const char* const Step =
    "<-TaskItem->\n<-MaxExeTimes->3</-MaxExeTimes->\n<-ArithmID->id</-ArithmID->\n<-OptionStr->\n<ID>7</ID>\n"
    "</-OptionStr->\n<-ClassName->c</-ClassName->\n<-ArithmName->n</-ArithmName->\n<-Describe->d</-Describe->\n"
    "</-TaskItem->\n";

SafeFile::Sink appendTo(QByteArray& bytes)
{
    return [&bytes](const QByteArray& piece) {
        bytes += piece;
        return true;
    };
}

/// Puts one of many disturbances somewhere into a text.
class Disturber
{
public:
    void disturb(QString& text)
    {
        const int place = below(text.size());
        switch (below(5)) {
        case 0:
            text.insert(place, m_lstStray.at(below(m_lstStray.size())));
            break;
        case 1:
            text.remove(place, 1 + below(30));
            break;
        case 2:
            text[place] = text.at(place).toUpper();
            break;
        case 3:
            text.insert(place, text.mid(below(text.size()), below(80)));
            break;
        default:
            text.truncate(place);
            break;
        }
    }
    int below(int limit) { return limit < 1 ? 0 : static_cast<int>(m_cRandom() % static_cast<unsigned>(limit)); }

private:
    std::mt19937 m_cRandom{7};
    const QStringList m_lstStray = {QStringLiteral("<-TaskItem->"),
                                    QStringLiteral("</-TaskItem->"),
                                    QStringLiteral("<-taskname->"),
                                    QStringLiteral("</-OPTIONSTR->"),
                                    QStringLiteral("<-MaxExeTimes->"),
                                    QStringLiteral("</-View->"),
                                    QStringLiteral("<-DataSource->a</-DataSource->"),
                                    QStringLiteral("<-Tas"),
                                    QStringLiteral("</-"),
                                    QStringLiteral("<-"),
                                    QStringLiteral("/-"),
                                    QStringLiteral("<=TaskInfo=>"),
                                    QStringLiteral("</=taskINFO=>"),
                                    QStringLiteral("<="),
                                    QStringLiteral("</="),
                                    QStringLiteral("<"),
                                    QChar(0),
                                    QStringLiteral("\t"),
                                    QStringLiteral(" \r\n"),
                                    QStringLiteral("中文"),
                                    QStringLiteral("-1"),
                                    QChar(0x212a)};
};

}  // namespace

class tstTaskText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldOfALaidOutTaskIsRead();
    void otherBlanksBetweenElementsChangeNothing();
    void disturbedTextsReadAsElementByElement();
    void disturbedProjectsReadAsElementByElement();
    void everyTaskOfALaidOutProjectIsRead();
    void signsOfATaskInAnOptionAreText();
    void projectEndsAtItsFirstNul();
    void missingSourceIsNotTakenFromAnOption();
    void equalTextsOfNeighbouringStepsShareTheirMemory();
    void equalTextsOfStepsInTurnsShareTheirMemory();
    void savedTextIsTheWholeTextWithoutEmptyLines();
    void countsOfStepsAreSavedAsTheyAre();
    void savedTextCollapsesLineEndsAcrossItsPieces();
    void savedTextOfNothingButLineEndsIsOne();
    void savingEndsWhereItsBytesAreNotTaken();
};

void tstTaskText::everyFieldOfALaidOutTaskIsRead()
{
    const QString text = QLatin1String(Head) + QLatin1String(Source) + QLatin1String(Step) + QLatin1String(Step);
    const QStringList step = {"3", "0", "id", "\n<ID>7</ID>\n", "c", "n", "d"};
    const QStringList named = {"names 7"};

    QCOMPARE(contents(TaskText::read(text)),
             QStringList({"t", "2", "1", "\n<DSName>x</DSName>\n"}) + step + step + named);
    QCOMPARE(contents(TaskText::readByElements(text)), contents(TaskText::read(text)));
}

// Steps as the program writes them are read piece by piece, the one between them element by element.
void tstTaskText::otherBlanksBetweenElementsChangeNothing()
{
    const QString other = QString::fromLatin1(Step).replace(QLatin1String("->\n<-"), QLatin1String("-> \r\n\n<-"));
    const QStringList step = {"3", "0", "id", "\n<ID>7</ID>\n", "c", "n", "d"};
    const QStringList named = {"names 7"};
    QVERIFY(other != QLatin1String(Step));

    const TaskText task = TaskText::read(QLatin1String(Head) + QLatin1String(Step) + other + QLatin1String(Step));

    QCOMPARE(contents(task), QStringList({"t", "2", "1", ""}) + step + step + step + named);
    for (const TaskItem& item : task.m_lstSteps)  // Only what is read in one pass shares its texts.
        QCOMPARE(item.m_strArithmID.constData(), task.m_lstSteps.first().m_strArithmID.constData());
}

void tstTaskText::disturbedTextsReadAsElementByElement()
{
    Disturber random;
    for (int round = 0; round < 20000; ++round) {
        QString text = QLatin1String(Head);
        if (random.below(2))
            text += QLatin1String(Source);
        text += QString::fromLatin1(Step).repeated(random.below(4));
        for (int i = random.below(4); i > 0 && !text.isEmpty(); --i)
            random.disturb(text);
        if (contents(TaskText::read(text)) != contents(TaskText::readByElements(text)))
            QFAIL(qPrintable(text));
    }
}

void tstTaskText::disturbedProjectsReadAsElementByElement()
{
    Disturber random;
    for (int round = 0; round < 20000; ++round) {
        QString text;
        for (int task = random.below(4); task > 0; --task)
            text += QLatin1String("<=TaskInfo=>\n") + QLatin1String(Head) +
                    QString::fromLatin1(Source).repeated(random.below(2)) +
                    QString::fromLatin1(Step).repeated(random.below(3)) + QLatin1String("\n</=TaskInfo=>\n");
        for (int i = random.below(4); i > 0 && !text.isEmpty(); --i)
            random.disturb(text);
        QList<QStringList> read;
        for (const TaskText& task : TaskText::readProject(text))
            read += contents(task);
        QList<QStringList> expected;
        for (const TaskText& task : TaskText::readProjectByElements(text))
            expected += contents(task);
        if (read != expected)
            QFAIL(qPrintable(text));
    }
}

void tstTaskText::everyTaskOfALaidOutProjectIsRead()
{
    const QString task = QLatin1String("<=TaskInfo=>\n") + QLatin1String(Head) + QLatin1String(Step) +
                         QLatin1String("\n</=TaskInfo=>\n");

    const QList<TaskText> tasks = TaskText::readProject(task + task);

    QCOMPARE(tasks.size(), 2);
    QCOMPARE(contents(tasks.at(1)),
             QStringList({"t", "2", "1", "", "3", "0", "id", "\n<ID>7</ID>\n", "c", "n", "d", "names 7"}));
    QCOMPARE(TaskText::readProject(QString()).size(), 0);
}

void tstTaskText::signsOfATaskInAnOptionAreText()
{
    const QString option = QStringLiteral("a<=b </=c <<d </e <=TaskInf");
    QString text =
        QLatin1String("<=TaskInfo=>\n") + QLatin1String(Head) + QLatin1String(Step) + QLatin1String("</=TaskInfo=>\n");
    text.replace(QStringLiteral("<ID>7</ID>"), option);

    QCOMPARE(TaskText::readProject(text).first().m_lstSteps.first().m_strOption,
             QLatin1Char('\n') + option + QLatin1Char('\n'));
}

void tstTaskText::projectEndsAtItsFirstNul()
{
    const QString task =
        QLatin1String("<=TaskInfo=>\n") + QLatin1String(Head) + QLatin1String(Step) + QLatin1String("</=TaskInfo=>\n");

    QCOMPARE(TaskText::readProject(task + QChar(0) + task).size(), 1);
    QCOMPARE(TaskText::readProject(task + QString(task).replace(QLatin1Char('7'), QChar(0))).size(), 1);
}

// The first element of that name is the task's, wherever it stands.
void tstTaskText::missingSourceIsNotTakenFromAnOption()
{
    QString text = QLatin1String(Head) + QLatin1String(Step);
    text.replace(QStringLiteral("<ID>7</ID>"), QStringLiteral("<-DataSource->s</-DataSource->"));

    const TaskText task = TaskText::read(text);

    QCOMPARE(task.m_strDataSource, QStringLiteral("s"));
    QCOMPARE(task.m_lstSteps.first().m_strOption, QStringLiteral("\n\n"));
}

void tstTaskText::equalTextsOfNeighbouringStepsShareTheirMemory()
{
    const TaskText task = TaskText::read(QString(QLatin1String(Head) + QLatin1String(Step) + QLatin1String(Step)));

    QCOMPARE(task.m_lstSteps.size(), 2);
    QCOMPARE(task.m_lstSteps.at(0).m_strArithmID.constData(), task.m_lstSteps.at(1).m_strArithmID.constData());
}

void tstTaskText::equalTextsOfStepsInTurnsShareTheirMemory()
{
    const QString other = QString::fromLatin1(Step).replace(QLatin1String(">id<"), QLatin1String(">id of another<"));
    const QString turn = QLatin1String(Step) + other;

    const TaskText task = TaskText::read(QLatin1String(Head) + turn + turn);

    QCOMPARE(task.m_lstSteps.size(), 4);
    QCOMPARE(task.m_lstSteps.at(1).m_strArithmID, QStringLiteral("id of another"));
    for (int i = 0; i < 2; ++i)
        QCOMPARE(task.m_lstSteps.at(i).m_strArithmID.constData(), task.m_lstSteps.at(i + 2).m_strArithmID.constData());
}

void tstTaskText::savedTextIsTheWholeTextWithoutEmptyLines()
{
    TaskMgr* const tasks = TaskMgr::getInstance();
    QString project;
    for (int task = 0; task < 3; ++task)
        project += QLatin1String("<=TaskInfo=>\n") + QLatin1String(Head) +
                   QString::fromLatin1(Step)
                       .replace(QLatin1Char('7'), QStringLiteral("7\n\n中\r\n\r\n\r\n文\n\n"))
                       .repeated(400) +
                   QLatin1String("</=TaskInfo=>\n");
    tasks->fromString(project);
    QVERIFY(tasks->toString().contains(QLatin1String("\n\n")));

    const QByteArray saved = savedText();

    QVERIFY(saved.size() > 200 * 1024);
    QVERIFY(saved == ProjectText::collapseEmptyLines(tasks->toString()).toUtf8());
    tasks->clear();
    QCOMPARE(savedText(), QByteArray());
}

void tstTaskText::countsOfStepsAreSavedAsTheyAre()
{
    QString project = QLatin1String("<=TaskInfo=>\n") + QLatin1String(Head);
    for (const char* count : {"-1", "0", "3", "999999999", "-7"})
        project += QString::fromLatin1(Step).replace(QLatin1String(">3<"), QStringLiteral(">%1<").arg(count));
    TaskMgr* const tasks = TaskMgr::getInstance();
    tasks->fromString(project + QLatin1String("</=TaskInfo=>\n"));

    const QString saved = QString::fromUtf8(savedText());
    tasks->clear();

    QStringList counts;
    for (const QString& line : saved.split('\n')) {
        if (line.startsWith("<-MaxExeTimes->"))
            counts += line;
    }
    QCOMPARE(counts, QStringList({"<-MaxExeTimes->-1</-MaxExeTimes->", "<-MaxExeTimes->0</-MaxExeTimes->",
                                  "<-MaxExeTimes->3</-MaxExeTimes->", "<-MaxExeTimes->999999999</-MaxExeTimes->",
                                  "<-MaxExeTimes->-7</-MaxExeTimes->"}));
}

void tstTaskText::savedTextCollapsesLineEndsAcrossItsPieces()
{
    QByteArray bytes;
    ProjectText::Saved saved(appendTo(bytes));
    QString whole;
    const QStringList ends = {QStringLiteral("\r\n\r"), QStringLiteral("\n\r\n\r\n"), QStringLiteral("\r\r"),
                              QStringLiteral("x\n"),    QStringLiteral("\n"),         QStringLiteral("\r\n")};
    for (int piece = 0; piece < 36; ++piece) {
        const QString text =
            ends.at(piece % 6) + QString(piece % 4 == 0 ? 0 : 40000, QLatin1Char('y')) + ends.at(piece / 6);
        whole += text;
        saved.text() += text;
        saved.keepShort();
        QVERIFY(saved.text().size() < 40010);
    }

    QVERIFY(saved.finish());
    QVERIFY(bytes == ProjectText::collapseEmptyLines(whole).toUtf8());
}

void tstTaskText::savedTextOfNothingButLineEndsIsOne()
{
    QByteArray bytes;
    ProjectText::Saved saved(appendTo(bytes));
    saved.text() += QString(40000, QLatin1Char('\n'));
    saved.keepShort();

    QVERIFY(saved.finish());
    QCOMPARE(bytes, QByteArray("\n"));
}

void tstTaskText::savingEndsWhereItsBytesAreNotTaken()
{
    int given = 0;
    ProjectText::Saved saved([&given](const QByteArray&) { return ++given < 3; });
    for (int piece = 0; piece < 10; ++piece) {
        saved.text() += QString(40000, QLatin1Char('y'));
        saved.keepShort();
        QVERIFY(saved.text().size() < 40000);
    }

    QVERIFY(!saved.finish());
    QCOMPARE(given, 3);

    QVERIFY(TaskMgr::getInstance()->save([](const QByteArray&) { return true; }));
    QVERIFY(!TaskMgr::getInstance()->save([](const QByteArray&) { return false; }));
}

QTEST_GUILESS_MAIN(tstTaskText)
#include "tstTaskText.moc"
