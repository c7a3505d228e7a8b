#pragma once

#include "paramStore/arithmParamMgr.h"
#include "paramStore/pictureLayout.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QString>
#include <QTemporaryDir>

#include <cstring>
#include <memory>

/// What the tests of loading and saving share.
namespace PictureSupport {

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};
using Store = std::unique_ptr<ArithmParamMgr, StoreDeleter>;

inline Store makeStore()
{
    return Store(ArithmParamMgr::newInstance());
}

constexpr std::size_t MiB = std::size_t{1024} * 1024;

/// A 24-bit picture in which every byte tells its place.
inline QImage numberedPicture(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB888);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, qRgb((x * 5 + y) & 255, (x + y * 7) & 255, (x * 3 + y * 2) & 255));
    }
    return picture;
}

inline QImage plainPicture(int width, int height, QRgb colour)
{
    QImage picture(width, height, QImage::Format_RGB888);
    picture.fill(QColor::fromRgb(colour));
    return picture;
}

/// An 8-bit picture whose indices count up along the rows, with a palette that is anything but grey.
inline QImage palettePicture(int width, int height)
{
    QImage picture(width, height, QImage::Format_Indexed8);
    for (int i = 0; i < 256; ++i)
        picture.setColor(i, qRgb(255 - i, (i * 7) & 255, (i * 13) & 255));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.scanLine(y)[x] = static_cast<unsigned char>(10 + x + y * width);
    }
    return picture;
}

/// A folder of its own for one test.
class Folder
{
public:
    QString path() const { return m_cFolder.path(); }
    QString path(const QString& name) const { return m_cFolder.filePath(name); }
    QStringList names() const  ///< Everything in it, hidden files too.
    {
        return QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QString save(const QImage& picture, const QString& name) const  ///< By Qt itself; the path.
    {
        return picture.save(path(name)) ? path(name) : QString();
    }
    QString write(const QByteArray& bytes, const QString& name) const  ///< The path.
    {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? path(name) : QString();
    }

private:
    QTemporaryDir m_cFolder;
};

inline QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The pixels of a record, padding included.
inline QByteArray bytesOf(const ParamDIB& record)
{
    const auto count = PictureLayout::colourBytes(record.getWidth(), record.getHeight());
    return QByteArray(reinterpret_cast<const char*>(record.getDIB()), static_cast<int>(count));
}

inline QByteArray bytesOf(const ParamGray8& record)
{
    return QByteArray(reinterpret_cast<const char*>(record.getGray8()), record.getWidth() * record.getHeight());
}

/// Calls a built-in's entry point on an option text.
template <typename Algorithm>
QString execute(const QString& option, ArithmParamMgr* store)
{
    QByteArray utf8 = option.toUtf8();
    return QString::fromUtf8(Algorithm::execute(utf8.data(), store));
}

template <typename Algorithm>
QString configure(const QString& option, ArithmParamMgr* store)
{
    QByteArray utf8 = option.toUtf8();
    return QString::fromUtf8(Algorithm::showConfigWindow(utf8.data(), store, true));
}

}  // namespace PictureSupport
