#include "dataSource/dataSourceInfo.h"
#include "dataSource/dataSourceInstance.h"
#include "optionText.h"
#include "paramStore/arithmParamMgr.h"

#include <optional>

namespace {

/// Makes the output record of the type exist and gives it its labels; other types have no record.
void labelOutput(ArithmParamMgr* store, const QString& type, int id, const QString& name, const QString& describe)
{
    ArithmParam* record = nullptr;
    if (type == QLatin1String("RGB"))
        record = store->getParamDIB(id);
    else if (type == QLatin1String("Gray8"))
        record = store->getParamGray8(id);
    else if (type == QLatin1String("Gray16"))
        record = store->getParamGray16(id);
    if (!record)
        return;
    record->setName(name);
    record->setDescribe(describe);
}

}  // namespace

DataSource::DataSourceInstance* DataSource::createDataSourceFromConfigString(ArithmParamMgr* store, QString text)
{
    const OptionReader reader(text);
    const DataSourceInfo* kind = m_mapKinds.value(reader.text("DSName"));
    if (!kind)
        return nullptr;
    DataSourceInstance* instance = kind->newInstance(reader.text("Config"), store);
    const QString name = reader.text("OutputName");
    const QString describe = reader.text("OutputDescribe");
    instance->setNameAndDescribe(name, describe);
    const std::optional<int> id = reader.number("OutputID");
    // Kept on purpose: a source without a usable output is still shown and can be edited, it only delivers nothing.
    if (!id || *id < 1)
        return instance;
    const QString type = reader.text("OutputType");
    instance->setDataID(*id);
    instance->setDataType(type);
    if (store)
        labelOutput(store, type, *id, name, describe);
    return instance;
}
