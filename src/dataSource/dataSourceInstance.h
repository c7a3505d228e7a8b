#pragma once

#include "dataSource/dataSourceInfo.h"

#include <cstdint>

/**
 * One configured source of a task: fetches a picture a pass into the task's store.
 *
 * Threads: execute, start and stop on the task's thread while it runs; everything else on the window's thread while the
 * task is idle.
 */
class DataSource::DataSourceInstance
{
public:
    ~DataSourceInstance();  ///< Tells the kind to forget the instance.
    DataSourceInstance(const DataSourceInstance&) = delete;
    DataSourceInstance& operator=(const DataSourceInstance&) = delete;

    void setNameAndDescribe(QString name, QString describe);  ///< Of the output record.
    void setDataType(QString type);                           ///< "RGB" or "Gray8"; any other delivers nothing.
    QString getDataType() const;
    void setDataID(int id);  ///< Of the output record; above 0, or nothing is delivered.
    int getDataID() const;
    void setArithmParamMgr(ArithmParamMgr* store);  ///< Not owned.

    void setConfigString(QString config);  ///< Keeps the kind's configuration text and hands it to the kind.
    QString getConfigString() const;
    void showConfigWindow();  ///< Shows the kind's dialog and applies the text that it returns.

    void start();
    void stop();
    QString getLastError() const;

    /**
     * Fetches one picture into the output record.
     *
     * A picture whose reported size does not fit is refused like a missing one: the record keeps what it held.
     * @return true when a picture was copied
     */
    bool execute();

    static std::atomic<int> BaseID;  ///< The next instance number; starts at 1.

private:
    friend class DataSourceInfo;
    DataSourceInstance() = default;

    /// Labels the record and fetches one picture into it; bytesOf gives the size of a picture of the type, 0 for none.
    template <typename Record>
    bool fetchInto(Record& record, const char* type, std::int64_t (*bytesOf)(int width, int height));

    int m_nInstance = 0;
    QString m_strName;
    QString m_strDescribe;
    DataSourceInfo::RequestPicture m_pfnRequestPicture = nullptr;
    DataSourceInfo::ReleasePicture m_pfnReleasePicture = nullptr;
    DataSourceInfo::ShowConfigDlg m_pfnShowConfigDlg = nullptr;
    DataSourceInfo::SetConfig m_pfnSetConfig = nullptr;
    DataSourceInfo::Start m_pfnStart = nullptr;
    DataSourceInfo::Stop m_pfnStop = nullptr;
    DataSourceInfo::RemoveInstance m_pfnRemoveInstance = nullptr;
    DataSourceInfo::GetLastError m_pfnGetLastError = nullptr;
    ArithmParamMgr* m_pcStore = nullptr;  ///< Not owned.
    QString m_strConfig;
    QString m_strDataType;
    int m_nDataID = 0;
};
