// A project file: opened as the window opens it, compared with a model read in the plainest way, saved as the window
// saves it, opened again.
#include "fuzzSupport.h"
#include "naiveText.h"
#include "paramStore/arithmParamMgr.h"
#include "safeFile.h"
#include "taskMgr/projectText.h"
#include "taskMgr/taskMgr.h"

#include <QList>

#include <algorithm>
#include <iterator>

#include <sys/mman.h>
#include <unistd.h>

namespace {

struct Step
{
    int maxExeTimes = 0;
    QString texts[5];  // identifier, option, class, name, description
};

struct Task
{
    QString name;
    int kernel = 0;
    int view = 0;
    QString source;
    bool hasSource = false;
    QList<Step> steps;
};

const char* const StepTags[5] = {"ArithmID", "OptionStr", "ClassName", "ArithmName", "Describe"};
constexpr int OptionIndex = 1;

QString take(QString& text, const char* tag)
{
    const QString name = QLatin1String(tag);
    return Naive::takeBody(text, "<-" + name + "->", "</-" + name + "->");
}

Step readStep(QString body)
{
    Step step;
    step.maxExeTimes = take(body, "MaxExeTimes").toInt();
    for (int i = 0; i < 5; ++i)
        step.texts[i] = take(body, StepTags[i]);
    return step;
}

bool isSource(const QString& name)
{
    const QString start = QStringLiteral("Memory Disk ");
    return name.startsWith(start) && name.size() == start.size() + 1 && name.at(12) >= '0' && name.at(12) <= '5';
}

Task readTask(QString body)
{
    Task task;
    task.name = take(body, "TaskName");
    task.kernel = take(body, "Kernel").toInt();
    task.view = take(body, "View").toInt();
    task.source = take(body, "DataSource");
    task.hasSource = isSource(Naive::element(task.source, QStringLiteral("DSName")));
    for (QString item = take(body, "TaskItem"); !item.isEmpty(); item = take(body, "TaskItem"))
        task.steps.append(readStep(item));
    return task;
}

QList<Task> readProject(QString text)
{
    QList<Task> tasks;
    for (;;) {
        const QString body = Naive::takeBody(text, QStringLiteral("<=TaskInfo=>"), QStringLiteral("</=TaskInfo=>"));
        if (body.isEmpty())
            return tasks;
        tasks.append(readTask(body));
    }
}

/// What the program holds, in the form of the model.
Task foundTask(TaskInfo& info)
{
    Task task;
    task.name = info.getName();
    task.kernel = info.getKernel();
    task.view = info.getView();
    task.source = info.getDataSourceConfig();
    task.hasSource = info.getDataSourceInstance() != nullptr;
    for (const TaskItem& item : info.getTaskItem()) {
        Step step;
        step.maxExeTimes = item.m_nMaxExeTimes;
        const QString texts[5] = {item.m_strArithmID, item.m_strOption, item.m_strClassName, item.m_strArithmName,
                                  item.m_strDescribe};
        std::copy(std::begin(texts), std::end(texts), std::begin(step.texts));
        task.steps.append(step);
        Fuzz::expect(item.m_nExeTimes == 0, "a step that was read has not run");
    }
    return task;
}

QList<Task> foundProject()
{
    QList<Task> tasks;
    TaskMgr* const manager = TaskMgr::getInstance();
    for (int id = 0; id < manager->getTaskNum(); ++id) {
        TaskInfo* const info = manager->getTask(id);
        Fuzz::expect(info != nullptr, "tasks are numbered from 0 on");
        tasks.append(foundTask(*info));
        Fuzz::expect(info->getArithmParamMgr()->getParamPoints(-1)->getID() > 0, "a fresh identifier is above 0");
    }
    return tasks;
}

void expectSame(const Task& found, const Task& wanted)
{
    Fuzz::expectEqual(found.name, wanted.name, "the name of a task");
    Fuzz::expect(found.kernel == wanted.kernel && found.view == wanted.view, "kernel and view of a task");
    Fuzz::expectEqual(found.source, wanted.source, "the data source text of a task");
    Fuzz::expect(found.hasSource == wanted.hasSource, "whether a task has a data source");
    Fuzz::expect(found.steps.size() == wanted.steps.size(), "the number of steps");
    for (int i = 0; i < found.steps.size(); ++i) {
        Fuzz::expect(found.steps.at(i).maxExeTimes == wanted.steps.at(i).maxExeTimes, "the count of a step");
        for (int text = 0; text < 5; ++text)
            Fuzz::expectEqual(found.steps.at(i).texts[text], wanted.steps.at(i).texts[text], StepTags[text]);
    }
}

void expectSame(const QList<Task>& found, const QList<Task>& wanted)
{
    Fuzz::expect(found.size() == wanted.size(), "the number of tasks");
    for (int i = 0; i < found.size(); ++i)
        expectSame(found.at(i), wanted.at(i));
}

// ---- The project text as it is written --------------------------------------------------------------------------

QString written(const Task& task)
{
    const auto line = [](const char* tag, const QString& body) {
        return QStringLiteral("<-%1->").arg(QLatin1String(tag)) + body +
               QStringLiteral("</-%1->\n").arg(QLatin1String(tag));
    };
    const auto block = [&line](const char* tag, const QString& body) {
        return line(tag, '\n' + Naive::trimmed(body) + '\n');
    };
    QString text = "<=TaskInfo=>\n" + line("TaskName", task.name) + line("Kernel", QString::number(task.kernel)) +
                   line("View", QString::number(task.view));
    if (task.hasSource)
        text += block("DataSource", task.source);
    for (const Step& step : task.steps) {
        text += "<-TaskItem->\n" + line("MaxExeTimes", QString::number(step.maxExeTimes));
        for (int i = 0; i < 5; ++i)
            text += i == OptionIndex ? block(StepTags[i], step.texts[i]) : line(StepTags[i], step.texts[i]);
        text += QLatin1String("</-TaskItem->\n");
    }
    return text + "\n</=TaskInfo=>\n";
}

/// Whether a text comes back as it was: it holds nothing of the markup and no empty line.
bool survives(const QString& text)
{
    for (const char* marker : {"<-", "</-", "<=", "</=", "\r\r", "\n\n", "\r\n\r\n"}) {
        if (text.contains(QLatin1String(marker)))
            return false;
    }
    return true;
}

bool survives(const Task& task)
{
    bool result = survives(task.name) && survives(Naive::trimmed(task.source));
    for (const Step& step : task.steps) {
        for (int i = 0; i < 5; ++i)
            result = result && survives(i == OptionIndex ? Naive::trimmed(step.texts[i]) : step.texts[i]);
    }
    return result;
}

/// As the task comes back: option and source text with a line feed around them, an unusable source not at all.
Task reopened(Task task)
{
    const auto block = [](const QString& text) {
        const QString body = Naive::trimmed(text);
        return body.isEmpty() ? QStringLiteral("\n") : '\n' + body + '\n';
    };
    task.source = task.hasSource ? block(task.source) : QString();
    for (Step& step : task.steps)
        step.texts[OptionIndex] = block(step.texts[OptionIndex]);
    return task;
}

// ---- Files ------------------------------------------------------------------------------------------------------

/// Reads what a file with these bytes holds, as the window does; the file lies in memory.
QString opened(const char* bytes, std::size_t size)
{
    static const int s_nFile = ::memfd_create("project", MFD_CLOEXEC);
    static const QString s_strPath = QStringLiteral("/proc/self/fd/%1").arg(s_nFile);
    const bool made = ::ftruncate(s_nFile, 0) == 0 && ::pwrite(s_nFile, bytes, size, 0) == static_cast<ssize_t>(size);
    Fuzz::expect(made, "a file can be made in memory");
    QByteArray read;
    Fuzz::expect(SafeFile::readUpToNul(s_strPath, read), "the file can be read");
    return QString::fromUtf8(read);
}

QString upToNul(const char* bytes, std::size_t size)
{
    std::size_t length = 0;
    while (length < size && bytes[length] != '\0')
        ++length;
    return QString::fromUtf8(bytes, static_cast<int>(length));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    TaskMgr* const manager = TaskMgr::getInstance();
    const auto* bytes = reinterpret_cast<const char*>(data);
    manager->fromString(opened(bytes, size));
    const QList<Task> tasks = readProject(upToNul(bytes, size));
    expectSame(foundProject(), tasks);

    QString wanted;
    for (const Task& task : tasks)
        wanted += written(task);
    const QString saved = ProjectText::collapseEmptyLines(manager->toString());
    Fuzz::expectEqual(saved, Naive::withoutEmptyLines(wanted), "the project text that is saved");

    const QByteArray file = saved.toUtf8();
    manager->fromString(opened(file.constData(), static_cast<std::size_t>(file.size())));
    const bool comesBack = std::all_of(tasks.begin(), tasks.end(), [](const Task& task) { return survives(task); });
    QList<Task> again;
    for (const Task& task : tasks)
        again.append(reopened(task));
    if (comesBack)
        expectSame(foundProject(), again);
    manager->clear();
    return 0;
}
