#include "taskInfo.h"

#include "globalFunction.h"
#include "paramStore/arithmParamMgr.h"
#include "taskMgr/runState.h"

TaskInfo::TaskInfo(QString name, CallBack messageCallBack)
    : m_strName(name),
      m_pcStore(ArithmParamMgr::newInstance()),
      m_pfnMessage(messageCallBack),
      m_pcRunState(std::make_shared<RunState>())
{
    connect(this, SIGNAL(threadFinished(QString, bool)), this, SLOT(threadFinishedArrived(QString, bool)));
}

TaskInfo::~TaskInfo()
{
    m_bStopRequested.store(true);
    waitUntilThreadIsGone();
    disconnectEvents();
    delete m_pcDataSource;
    GlobalFunction::getInstance()->dropOptionsOf(m_pcStore);  // they read from the store
    ArithmParamMgr::deleteInstance(m_pcStore);
}

void TaskInfo::setMssageCallBack(CallBack callBack)
{
    m_pfnMessage.store(callBack);
}

void TaskInfo::setPrintCallBack(CallBack callBack)
{
    m_pfnPrint.store(callBack);
}

void TaskInfo::ViewSelected(int index)
{
    m_nView.store(index);
}

void TaskInfo::ThreadSelected(int index)
{
    m_nKernel.store(index);
}

void TaskInfo::DataSourceClicked()
{
    // The dialog runs an event loop of its own, in which the task may be deleted.
    const QPointer<TaskInfo> self(this);
    QString config = m_strDataSourceConfig;
    std::unique_ptr<DataSource::DataSourceInstance> chosen(DataSource::getInstance()->newDataSource(m_pcStore, config));
    if (!self)
        return;
    m_strDataSourceConfig = config;
    if (!chosen)
        return;
    delete m_pcDataSource;
    m_pcDataSource = chosen.release();
}

void TaskInfo::prepareForRemoveArithm(TaskItem) {}
