#include "arithm/arithm.h"
#include "arithm/arithmMgr.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/taskInfo.h"
#include "taskMgr/taskMessages.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QTableWidget>

// Boxes and configuration windows run event loops of their own, in which the task may be deleted: whoever goes on after
// one looks at a QPointer of the task first.

namespace {

constexpr int EditTimeoutMs = 10000;  ///< Of a pass that the user waits for.

void showBox(const QString& text)
{
    QMessageBox::information(nullptr, TaskMessages::boxTitle(), text, QMessageBox::Ok);
}

TaskItem stepTemplate(const QString& className, const QString& arithmName)
{
    TaskItem item;
    item.m_strArithmID = ArithmMgr::getInstance()->getArithm(className, arithmName);
    item.m_strClassName = className;
    item.m_strArithmName = arithmName;
    return item;
}

/// The two targets of algorithm entries, each with its class sub-menus.
struct ClassMenus
{
    QMenu* m_pcTarget;
    QMap<QString, QMenu*> m_mapClasses;

    /// The class's sub-menu; made, and connected to the task, when its first entry arrives.
    QMenu* of(const QString& className, TaskInfo* task)
    {
        QMenu*& menu = m_mapClasses[className];
        if (!menu) {
            menu = m_pcTarget->addMenu(className);
            QObject::connect(menu, SIGNAL(triggered(QAction*)), task, SLOT(addArithm(QAction*)));
        }
        return menu;
    }
};

}  // namespace

void TaskInfo::runHere()
{
    if (!flowTable())
        return;
    const int row = selectedRow();
    if (row < 0) {
        showBox(TaskMessages::noArithmToRunTo());
        return;
    }
    const QPointer<TaskInfo> self(this);
    QString message;
    if (m_pcDataSource)
        m_pcDataSource->start();
    if (!runOnce(message, true, row, EditTimeoutMs) && !message.isEmpty())
        showBox(message);
    if (self && m_pcDataSource)
        m_pcDataSource->stop();
}

void TaskInfo::showContextmenu(QPoint position)
{
    QTableWidget* table = flowTable();
    if (!table)
        return;
    if (!m_pcContextMenu)
        buildContextMenu(table);
    static_cast<QMenu*>(m_pcContextMenu.data())->popup(table->viewport()->mapToGlobal(position));
}

void TaskInfo::buildContextMenu(QTableWidget* table)
{
    auto* menu = new QMenu(table);
    m_pcContextMenu = menu;
    m_mapActions.clear();
    ClassMenus plain{menu->addMenu(TaskMessages::menuAddArithm()), {}};
    ClassMenus extension{menu->addMenu(TaskMessages::menuAddExtArithm()), {}};
    ArithmMgr* algorithms = ArithmMgr::getInstance();
    for (const QString& className : algorithms->getArithmClassNames()) {
        for (const QString& arithmName : algorithms->getArithmNames(className)) {
            const TaskItem item = stepTemplate(className, arithmName);
            const Arithm* arithm = algorithms->getArithm(item.m_strArithmID);
            if (!arithm)
                continue;
            ClassMenus& target = arithm->IsExtLib() ? extension : plain;
            m_mapActions.insert(target.of(className, this)->addAction(arithmName), item);
        }
    }
    for (QMenu* target : {plain.m_pcTarget, extension.m_pcTarget})
        target->setEnabled(!target->isEmpty());
    menu->addSeparator();
    menu->addAction(TaskMessages::menuModify(), this, SLOT(modifyOption()));
    menu->addAction(TaskMessages::menuDelete(), this, SLOT(delArithm()));
    menu->addSeparator();
    menu->addAction(TaskMessages::menuRunHere(), this, SLOT(runHere()));
}

// Fills the store with what the step at a position will find, so that its configuration window shows real data. Before
// the first step that is the picture alone; a step behind the last one always gets a whole pass.
void TaskInfo::prepareStore(int position)
{
    const QPointer<TaskInfo> self(this);
    QString message;
    m_pcStore->clean();
    if (m_pcDataSource)
        m_pcDataSource->start();
    if (position != 0) {
        const int lastStep = position == AfterLastStep ? -1 : position - 1;
        if (!runOnce(message, true, lastStep, EditTimeoutMs) && !message.isEmpty())
            showBox(message);
    } else if (m_pcDataSource) {
        m_pcDataSource->execute();
    }
    if (self && m_pcDataSource)
        m_pcDataSource->stop();
}

// The step of a menu entry with the option text that the user chose; false when there is nothing to add.
bool TaskInfo::configureNewStep(int position, QAction* action, TaskItem& item)
{
    const QPointer<TaskInfo> self(this);
    item = m_mapActions.value(action);
    const Arithm* arithm = ArithmMgr::getInstance()->getArithm(item.m_strArithmID);
    if (!arithm) {
        showBox(TaskMessages::arithmNotFound());
        return false;
    }
    prepareStore(position);
    if (!self)
        return false;
    item.m_strOption = arithm->showConfigWindow(item.m_strOption, m_pcStore);
    return self && !item.m_strOption.isEmpty();
}

void TaskInfo::addArithm(QAction* action)
{
    const int row = selectedRow();
    if (row >= 0) {
        insertArithm(row, action);
        return;
    }
    TaskItem item;
    if (!configureNewStep(AfterLastStep, action, item))
        return;
    m_lstItems.append(item);
    if (QTableWidget* table = flowTable())
        appendRow(table, item);
}

void TaskInfo::insertArithm(int row, QAction* action)
{
    TaskItem item;
    if (!configureNewStep(qMax(row, 0), action, item))
        return;
    const int index = qBound(0, row, m_lstItems.size());
    m_lstItems.insert(index, item);
    showAddedStep(index);
}

void TaskInfo::modifyOption()
{
    if (!flowTable())
        return;
    const int row = selectedRow();
    if (row < 0) {
        showBox(TaskMessages::noArithmSelected());
        return;
    }
    if (row >= m_lstItems.size()) {
        showBox(TaskMessages::stepsOutOfStep());
        return;
    }
    const Arithm* arithm = ArithmMgr::getInstance()->getArithm(m_lstItems.at(row).m_strArithmID);
    if (!arithm) {
        showBox(TaskMessages::arithmToModifyNotFound());
        return;
    }
    const QPointer<TaskInfo> self(this);
    prepareStore(row);
    if (!self || row >= m_lstItems.size())
        return;
    const QString option = arithm->showConfigWindow(m_lstItems.at(row).m_strOption, m_pcStore);
    if (self && row < m_lstItems.size() && !option.isEmpty())
        m_lstItems[row].m_strOption = option;
}

void TaskInfo::delArithm()
{
    if (!flowTable())
        return;
    if (selectedRow() < 0) {
        showBox(TaskMessages::noArithmSelected());
        return;
    }
    const QPointer<TaskInfo> self(this);
    const auto answer = QMessageBox::information(nullptr, TaskMessages::boxTitle(), TaskMessages::confirmDelete(),
                                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (!self || answer != QMessageBox::Yes)
        return;
    const int row = selectedRow();
    if (row < 0 || row >= m_lstItems.size())
        return;
    prepareForRemoveArithm(m_lstItems.at(row));
    showRemovedStep(row);
    m_lstItems.removeAt(row);
}
