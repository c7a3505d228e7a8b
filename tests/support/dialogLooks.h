#pragma once

#include "dataSource/dlgDataSource.h"
#include "dlgNameInput.h"
#include "drawing/dlgDrawingConfig.h"
#include "loading/dlgLoadFile.h"
#include "memoryDisk/dlgMemoryDiskConfig.h"
#include "memoryDisk/dlgMemoryDiskStatus.h"
#include "paramStore/arithmParamMgr.h"
#include "saving/dlgSaveFile.h"
#include "saving/dlgSelectPic.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QTabWidget>

#include <memory>

/// All dialogs of the program, and whether what they say is to be seen whole.
namespace DialogLooks {

/// Records of all kinds, so that no list is empty.
inline void fillStore(ArithmParamMgr* store)
{
    const auto fill = [](ArithmParam* record, const char* name, const char* describe) {
        record->setName(QString::fromUtf8(name));
        record->setDescribe(QString::fromUtf8(describe));
    };
    fill(store->getParamDIB(1), "相机图片", "第一台相机的彩色图片");
    fill(store->getParamDIB(2), "结果", "处理以后");
    fill(store->getParamGray8(3), "灰度", "阈值以后");
    fill(store->getParamGray16(4), "深度", "十六位");
    fill(store->getParamPoints(5), "角点", "找到的角点");
    fill(store->getParamLines(6), "边", "找到的边");
    fill(store->getParamPolys(7), "轮廓", "零件的轮廓");
    fill(store->getParamAreas(8), "零件", "找到的零件");
    fill(store->getParamStrings(9), "文字", "读到的文字");
}

inline const QStringList Names{"memoryDiskConfig", "memoryDiskStatus", "dataSource", "drawing",
                               "saveFile",         "selectPic",        "loadFile",   "nameInput"};

inline std::unique_ptr<QDialog> make(const QString& name, ArithmParamMgr* store)
{
    static const QMap<QString, DataSource::DataSourceInfo*> Kinds{{QStringLiteral("Memory Disk 0"), nullptr},
                                                                  {QStringLiteral("工业相机"), nullptr}};
    if (name == QLatin1String("memoryDiskConfig"))
        return std::make_unique<DlgMemoryDiskConfig>(QString(), store, nullptr);
    if (name == QLatin1String("memoryDiskStatus"))
        return std::make_unique<DlgMemoryDiskStatus>();
    if (name == QLatin1String("dataSource"))
        return std::make_unique<DlgDataSource>(&Kinds, store, QString(), nullptr);
    if (name == QLatin1String("saveFile"))
        return std::make_unique<DlgSaveFile>(QString(), store, nullptr);
    if (name == QLatin1String("selectPic"))
        return std::make_unique<DlgSelectPic>(store);
    if (name == QLatin1String("loadFile"))
        return std::make_unique<DlgLoadFile>(QString(), store, nullptr);
    if (name == QLatin1String("nameInput"))
        return std::make_unique<dlgNameInput>();
    return std::make_unique<DlgDrawingConfig>(QString(), store, nullptr);
}

/// The pages of a dialog, or just the one.
inline int pageNum(QDialog& dialog)
{
    const auto* tabs = dialog.findChild<QTabWidget*>();
    return tabs ? tabs->count() : 1;
}

inline void openPage(QDialog& dialog, int page)
{
    if (auto* tabs = dialog.findChild<QTabWidget*>())
        tabs->setCurrentIndex(page);
    QCoreApplication::processEvents();
}

inline bool showsText(const QWidget* widget)
{
    return qobject_cast<const QLabel*>(widget) || qobject_cast<const QAbstractButton*>(widget) ||
           qobject_cast<const QComboBox*>(widget) || qobject_cast<const QGroupBox*>(widget) ||
           qobject_cast<const QProgressBar*>(widget);
}

/// The visible widgets of a window that say something.
inline QList<const QWidget*> speakers(const QWidget& window)
{
    QList<const QWidget*> found;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->window() == &window && showsText(widget))
            found += widget;
    }
    return found;
}

/// The names of widgets that are smaller than their text needs or reach beyond their window.
inline QStringList clipped(const QWidget& window)
{
    QStringList names;
    for (const QWidget* widget : speakers(window)) {
        const QSize needed = widget->minimumSizeHint();
        const QRect inWindow(widget->mapTo(&window, QPoint(0, 0)), widget->size());
        if (widget->width() < needed.width() || widget->height() < needed.height() || !window.rect().contains(inWindow))
            names += widget->objectName();
    }
    return names;
}

}  // namespace DialogLooks
