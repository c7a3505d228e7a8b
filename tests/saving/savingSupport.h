#pragma once

#include "pictureSupport.h"
#include "saving/saving.h"

#include <QString>

#include <csignal>

#include <sys/resource.h>

/// Option texts of saving steps, written out as the dialog writes them.
namespace SavingSupport {

struct Option
{
    QString folder;
    QString string = QStringLiteral("cam");
    int isStringID = 0;
    QString separator = QStringLiteral("_");
    int identity = 1;
    int format = 2;
    int exchange = 0;
    int wnd = 4;
    QString type = QStringLiteral("RGB");
    int id = 3;

    QString text() const
    {
        return QStringLiteral("<BasePath>%1</BasePath><StringID>%2</StringID><IsStringID>%3</IsStringID>")
                   .arg(folder, string)
                   .arg(isStringID) +
               QStringLiteral("<Separator>%1</Separator><Identity>%2</Identity><Format>%3</Format><Exg>%4</Exg>")
                   .arg(separator)
                   .arg(identity)
                   .arg(format)
                   .arg(exchange) +
               QStringLiteral("<Wnd>%1</Wnd><PicType>%2</PicType><PicID>%3</PicID>").arg(wnd).arg(type).arg(id);
    }
};

/// A step that writes the same file cam.bmp at every pass.
inline Option sameFileOption(const QString& folder)
{
    Option option;
    option.folder = folder;
    option.identity = 2;
    option.separator.clear();
    return option;
}

/// A colour record of one colour, in blue-green-red order.
inline ParamDIB* plainRecord(ArithmParamMgr& store, int id, int width, int height, QRgb colour)
{
    ParamDIB* record = store.getParamDIB(id);
    record->resize(width, height);
    const auto stride = PictureLayout::colourStride(width);
    for (int y = 0; y < height; ++y) {
        unsigned char* pixel = record->getDIB() + stride * y;
        for (int x = 0; x < width; ++x, pixel += 3) {
            pixel[0] = static_cast<unsigned char>(qBlue(colour));
            pixel[1] = static_cast<unsigned char>(qGreen(colour));
            pixel[2] = static_cast<unsigned char>(qRed(colour));
        }
    }
    return record;
}

/// No file can grow beyond a number of bytes while this lives: a disk that runs full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_cBefore);
        m_pfnBefore = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, m_cBefore.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_cBefore);
        std::signal(SIGXFSZ, m_pfnBefore);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_cBefore{};
    void (*m_pfnBefore)(int) = nullptr;
};

}  // namespace SavingSupport
