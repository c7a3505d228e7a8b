#include "dataSource/dataSourceInstance.h"

#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"
#include "pixels/pixels.h"

std::atomic<int> DataSource::DataSourceInstance::BaseID{1};

namespace {

/// Gives back the picture that a source handed out, or did not, when the scope ends.
class PictureLoan
{
public:
    PictureLoan(DataSource::DataSourceInfo::ReleasePicture release, int instance)
        : m_pfnRelease(release), m_nInstance(instance)
    {
    }
    ~PictureLoan() { m_pfnRelease(m_nInstance); }
    PictureLoan(const PictureLoan&) = delete;
    PictureLoan& operator=(const PictureLoan&) = delete;

private:
    DataSource::DataSourceInfo::ReleasePicture m_pfnRelease;
    int m_nInstance;
};

unsigned char* pixelsOf(const ParamDIB& record)
{
    return record.getDIB();
}

unsigned char* pixelsOf(const ParamGray8& record)
{
    return record.getGray8();
}

/// Copies a picture of bytes bytes into a record; false, and the record as it was, when there is no such picture.
template <typename Record>
bool copyInto(Record& record, const unsigned char* picture, int width, int height, std::int64_t bytes)
{
    if (!picture || bytes == 0)
        return false;
    record.resize(width, height);
    unsigned char* pixels = pixelsOf(record);
    if (!pixels)
        return false;
    Pixels::copyPicture(picture, pixels, static_cast<std::size_t>(bytes));
    return true;
}

}  // namespace

DataSource::DataSourceInstance::~DataSourceInstance()
{
    if (m_pfnRemoveInstance)
        m_pfnRemoveInstance(m_nInstance);
}

void DataSource::DataSourceInstance::setNameAndDescribe(QString name, QString describe)
{
    m_strName = name;
    m_strDescribe = describe;
}

void DataSource::DataSourceInstance::setDataType(QString type)
{
    m_strDataType = type;
}

QString DataSource::DataSourceInstance::getDataType() const
{
    return m_strDataType;
}

void DataSource::DataSourceInstance::setDataID(int id)
{
    m_nDataID = id;
}

int DataSource::DataSourceInstance::getDataID() const
{
    return m_nDataID;
}

void DataSource::DataSourceInstance::setArithmParamMgr(ArithmParamMgr* store)
{
    m_pcStore = store;
}

void DataSource::DataSourceInstance::setConfigString(QString config)
{
    m_strConfig = config;
    QByteArray utf8 = config.toUtf8();
    m_pfnSetConfig(m_nInstance, utf8.data());
}

QString DataSource::DataSourceInstance::getConfigString() const
{
    return m_strConfig;
}

void DataSource::DataSourceInstance::showConfigWindow()
{
    QByteArray utf8 = m_strConfig.toUtf8();
    setConfigString(QString::fromUtf8(m_pfnShowConfigDlg(utf8.data(), true)));
}

void DataSource::DataSourceInstance::start()
{
    if (m_pfnStart)
        m_pfnStart(m_nInstance);
}

void DataSource::DataSourceInstance::stop()
{
    if (m_pfnStop)
        m_pfnStop(m_nInstance);
}

QString DataSource::DataSourceInstance::getLastError() const
{
    return m_pfnGetLastError ? QString::fromUtf8(m_pfnGetLastError(m_nInstance)) : QString();
}

bool DataSource::DataSourceInstance::execute()
{
    if (!m_pfnRequestPicture || !m_pfnReleasePicture || !m_pcStore || m_nDataID <= 0)
        return false;
    if (m_strDataType == QLatin1String("RGB"))
        return fetchInto(*m_pcStore->getParamDIB(m_nDataID), "RGB", PictureLayout::colourBytes);
    if (m_strDataType == QLatin1String("Gray8"))
        return fetchInto(*m_pcStore->getParamGray8(m_nDataID), "Gray8", PictureLayout::gray8Bytes);
    return false;
}

template <typename Record>
bool DataSource::DataSourceInstance::fetchInto(Record& record, const char* type, std::int64_t (*bytesOf)(int, int))
{
    record.setName(m_strName);
    record.setDescribe(m_strDescribe);
    int width = 0;
    int height = 0;
    const unsigned char* picture = m_pfnRequestPicture(m_nInstance, type, &width, &height);
    const PictureLoan loan(m_pfnReleasePicture, m_nInstance);
    return copyInto(record, picture, width, height, bytesOf(width, height));
}
