#include "packLibraries.h"

#include <paramStore/pictureLayout.h>

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLibrary>
#include <QTimer>

#include <atomic>
#include <cstring>

namespace {

/// Never unloads, as the workbench does.
class Loader
{
public:
    explicit Loader(const QString& path) : m_cLibrary(path)
    {
        m_cLibrary.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        if (!m_cLibrary.load())
            qFatal("%s", qPrintable(m_cLibrary.errorString()));
    }

    template <typename Function>
    void resolve(Function& function, const char* symbol)
    {
        function = reinterpret_cast<Function>(m_cLibrary.resolve(symbol));
        if (!function)
            qFatal("%s is missing in %s", symbol, qPrintable(m_cLibrary.fileName()));
    }

private:
    QLibrary m_cLibrary;
};

QString pluginPath(const char* folder, const QString& name)
{
    return QStringLiteral("%1/%2/%3.so").arg(QStringLiteral(PACK_PLUGIN_DIR), QLatin1String(folder), name);
}

void driveWhenShown(const DialogDriver& driver)
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog) {
        QTimer::singleShot(10, qApp, [driver] { driveWhenShown(driver); });
        return;
    }
    driver(*dialog);
    if (dialog->isVisible())
        dialog->reject();
}

}  // namespace

StorePtr newStore()
{
    return StorePtr(ArithmParamMgr::newInstance());
}

void driveNextDialog(const DialogDriver& driver)
{
    QTimer::singleShot(0, qApp, [driver] { driveWhenShown(driver); });
}

AlgorithmLibrary::AlgorithmLibrary(const QString& name)
{
    Loader loader(pluginPath("baseArithm", name));
    loader.resolve(m_pfnGetID, "getID");
    loader.resolve(m_pfnGetArithmClass, "getArithmClass");
    loader.resolve(m_pfnGetArithmName, "getArithmName");
    loader.resolve(m_pfnShowConfigWindow, "showConfigWindow");
    loader.resolve(m_pfnExecute, "execute");
}

QString AlgorithmLibrary::id() const
{
    return QString::fromUtf8(m_pfnGetID());
}

QString AlgorithmLibrary::className() const
{
    return QString::fromUtf8(m_pfnGetArithmClass());
}

QString AlgorithmLibrary::displayName() const
{
    return QString::fromUtf8(m_pfnGetArithmName());
}

QString AlgorithmLibrary::execute(const QString& option, ArithmParamMgr* store) const
{
    QByteArray utf8 = option.toUtf8();
    return QString::fromUtf8(m_pfnExecute(utf8.data(), store));
}

QString AlgorithmLibrary::configure(const QString& option, ArithmParamMgr* store, const DialogDriver& driver) const
{
    driveNextDialog(driver);
    QByteArray utf8 = option.toUtf8();
    return QString::fromUtf8(m_pfnShowConfigWindow(utf8.data(), store, true));
}

SourceLibrary::SourceLibrary(const QString& name)
{
    Loader loader(pluginPath("DataSource", name));
    loader.resolve(getDataSourceName, "getDataSourceName");
    loader.resolve(requestPicture, "requestPicture");
    loader.resolve(releasePicture, "releasePicture");
    loader.resolve(showConfigDlg, "showConfigDlg");
    loader.resolve(setConfig, "setConfig");
    loader.resolve(start, "start");
    loader.resolve(stop, "stop");
    loader.resolve(removeInstance, "removeInstance");
    loader.resolve(getLastError, "getLastError");
}

QString SourceLibrary::configure(const QString& config, const DialogDriver& driver) const
{
    driveNextDialog(driver);
    QByteArray utf8 = config.toUtf8();
    return QString::fromUtf8(showConfigDlg(utf8.data(), true));
}

SourceInstance::SourceInstance(const SourceLibrary& library, const QString& config) : m_cLibrary(library)
{
    static std::atomic<int> s_nNext{1};
    m_nNumber = s_nNext++;
    setConfig(config);
}

SourceInstance::~SourceInstance()
{
    m_cLibrary.removeInstance(m_nNumber);
}

void SourceInstance::setConfig(const QString& config)
{
    QByteArray utf8 = config.toUtf8();
    m_cLibrary.setConfig(m_nNumber, utf8.data());
}

Picture SourceInstance::request(const char* type)
{
    Picture picture;
    const unsigned char* pixels = m_cLibrary.requestPicture(m_nNumber, type, &picture.width, &picture.height);
    if (pixels) {
        const std::int64_t bytes = std::strcmp(type, "RGB") == 0
                                       ? PictureLayout::colourBytes(picture.width, picture.height)
                                       : PictureLayout::gray8Bytes(picture.width, picture.height);
        picture.bytes = QByteArray(reinterpret_cast<const char*>(pixels), static_cast<int>(bytes));
    }
    m_cLibrary.releasePicture(m_nNumber);
    return picture;
}

Picture SourceInstance::waitFor(const char* type)
{
    QElapsedTimer timer;
    timer.start();
    Picture picture = request(type);
    while (picture.isNull() && timer.elapsed() < 20000)
        picture = request(type);
    return picture;
}

QString SourceInstance::lastError() const
{
    return QString::fromUtf8(m_cLibrary.getLastError(m_nNumber));
}
