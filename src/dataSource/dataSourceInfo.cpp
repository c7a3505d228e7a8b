#include "dataSource/dataSourceInfo.h"

#include "dataSource/dataSourceInstance.h"

DataSource::DataSourceInfo::DataSourceInfo(RequestPicture requestPicture, ReleasePicture releasePicture,
                                           ShowConfigDlg showConfigDlg, SetConfig setConfig, Start start, Stop stop,
                                           RemoveInstance removeInstance, GetLastError getLastError)
    : m_pfnRequestPicture(requestPicture),
      m_pfnReleasePicture(releasePicture),
      m_pfnShowConfigDlg(showConfigDlg),
      m_pfnSetConfig(setConfig),
      m_pfnStart(start),
      m_pfnStop(stop),
      m_pfnRemoveInstance(removeInstance),
      m_pfnGetLastError(getLastError)
{
}

DataSource::DataSourceInstance* DataSource::DataSourceInfo::newInstance(QString config, ArithmParamMgr* store) const
{
    auto* instance = new DataSourceInstance;
    instance->m_nInstance = DataSourceInstance::BaseID++;
    instance->m_pfnRequestPicture = m_pfnRequestPicture;
    instance->m_pfnReleasePicture = m_pfnReleasePicture;
    instance->m_pfnShowConfigDlg = m_pfnShowConfigDlg;
    instance->m_pfnSetConfig = m_pfnSetConfig;
    instance->m_pfnStart = m_pfnStart;
    instance->m_pfnStop = m_pfnStop;
    instance->m_pfnRemoveInstance = m_pfnRemoveInstance;
    instance->m_pfnGetLastError = m_pfnGetLastError;
    instance->setConfigString(config);
    instance->setArithmParamMgr(store);
    return instance;
}

QString DataSource::DataSourceInfo::showConfigWindow(QString config) const
{
    QByteArray utf8 = config.toUtf8();
    return QString::fromUtf8(m_pfnShowConfigDlg(utf8.data(), true));
}
