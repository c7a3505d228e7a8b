#pragma once

#include "folderThread.h"
#include "mainwindow.h"
#include "modalDriver.h"
#include "taskMgr/taskMgr.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The real window, shown, and its widgets by name.
class WindowFixture
{
public:
    WindowFixture() : m_pcWindow(std::make_unique<MainWindow>())
    {
        m_pcWindow->show();
        static_cast<void>(QTest::qWaitForWindowExposed(m_pcWindow.get()));
    }

    template <typename Widget>
    Widget* child(const char* name) const
    {
        return m_pcWindow->findChild<Widget*>(QString::fromLatin1(name));
    }

    QTabWidget* tabs() const { return child<QTabWidget>("tabWidget"); }
    QLabel* output() const { return child<QLabel>("lblOutputMsg"); }
    void trigger(const char* action) const { child<QAction>(action)->trigger(); }
    void press(const char* button) const { QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton); }
    QPushButton* runButton(int tab) const { return tabs()->widget(tab)->findChildren<QPushButton*>().at(0); }
    QTableWidget* table(int tab) const { return tabs()->widget(tab)->findChild<QTableWidget*>(); }

    /// Adds a task through the menu's command and the name dialog.
    bool addTask(const QString& name) const
    {
        ModalDriver driver;
        driver.name(name);
        trigger("addProcess");
        return driver.done();
    }

    /// Deletes the current tab's task through the menu's command.
    bool deleteTask() const
    {
        ModalDriver driver;
        driver.box(QMessageBox::Yes);
        trigger("delProcess");
        return driver.done();
    }

    /// Opens a project through the real dialog.
    bool open(const QString& path) const
    {
        ModalDriver driver;
        driver.file(path);
        trigger("openOption");
        return driver.done();
    }

    /// Saves the project under a new name through the real dialog.
    bool saveAs(const QString& path) const
    {
        ModalDriver driver;
        driver.file(path);
        trigger("saveOptionAs");
        return driver.done();
    }

    std::unique_ptr<MainWindow> m_pcWindow;
};

inline void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), static_cast<qint64>(bytes.size()));
}

inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

/// The saved form of a task that reads from a memory disk and so runs until it is stopped.
inline QByteArray taskOnDisk(const QByteArray& name, int disk, const QByteArray& steps = QByteArray())
{
    return "<=TaskInfo=>\n<-TaskName->" + name + "</-TaskName->\n<-Kernel->0</-Kernel->\n<-View->0</-View->\n" +
           "<-DataSource->\n<DSName>Memory Disk " + QByteArray::number(disk) +
           "</DSName><OutputName>in</OutputName><OutputDescribe></OutputDescribe><OutputType>RGB</OutputType>"
           "<OutputID>1</OutputID><Config></Config>\n</-DataSource->\n" +
           steps + "</=TaskInfo=>\n";
}

/// The saved form of a task without a picture source.
inline QByteArray taskWithoutSource(const QByteArray& name, const QByteArray& steps = QByteArray())
{
    return "<=TaskInfo=>\n<-TaskName->" + name + "</-TaskName->\n<-Kernel->0</-Kernel->\n<-View->0</-View->\n" + steps +
           "</=TaskInfo=>\n";
}

/// The saved form of a step.
inline QByteArray stepOf(const QByteArray& id, const QByteArray& name, const QByteArray& count = "-1",
                         const QByteArray& describe = QByteArray())
{
    return "<-TaskItem->\n<-MaxExeTimes->" + count + "</-MaxExeTimes->\n<-ArithmID->" + id +
           "</-ArithmID->\n<-OptionStr->\n<A>1</A>\n</-OptionStr->\n<-ClassName->类</-ClassName->\n<-ArithmName->" +
           name + "</-ArithmName->\n<-Describe->" + describe + "</-Describe->\n</-TaskItem->\n";
}
