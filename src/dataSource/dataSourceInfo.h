#pragma once

#include "dataSource/dataSource.h"

/// One kind of data source: a table of eight entry points. Immutable; owned by the registry.
class DataSource::DataSourceInfo
{
public:
    using RequestPicture = unsigned char* (*)(int instance, const char* type, int* width, int* height);
    using ReleasePicture = void (*)(int instance);
    using ShowConfigDlg = char* (*)(char* config, bool);
    using SetConfig = void (*)(int instance, char* config);
    using Start = void (*)(int instance);
    using Stop = void (*)(int instance);
    using RemoveInstance = void (*)(int instance);
    using GetLastError = char* (*)(int instance);

    DataSourceInfo(RequestPicture requestPicture, ReleasePicture releasePicture, ShowConfigDlg showConfigDlg,
                   SetConfig setConfig, Start start, Stop stop, RemoveInstance removeInstance,
                   GetLastError getLastError);

    /// A configured instance with the next instance number; owned by the caller.
    DataSourceInstance* newInstance(QString config, ArithmParamMgr* store) const;

    /// Shows the kind's own modal dialog; the configuration text that it returns.
    QString showConfigWindow(QString config) const;

private:
    RequestPicture m_pfnRequestPicture;
    ReleasePicture m_pfnReleasePicture;
    ShowConfigDlg m_pfnShowConfigDlg;
    SetConfig m_pfnSetConfig;
    Start m_pfnStart;
    Stop m_pfnStop;
    RemoveInstance m_pfnRemoveInstance;
    GetLastError m_pfnGetLastError;
};
