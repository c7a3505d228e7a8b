// Option texts of the loading, the saving and the memory disk step, run on a store with every kind of record. Input:
// the text up to a zero byte, then what the store holds.
#include "fuzzInput.h"
#include "fuzzSupport.h"
#include "loading/loading.h"
#include "memoryDisk/memoryDisk.h"
#include "naiveText.h"
#include "paramStore/pictureLayout.h"
#include "saving/saving.h"
#include "storeMaker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <utility>

#include <sys/stat.h>

namespace {

struct Number
{
    bool ok = false;
    int value = 0;
};

Number numberIn(const QString& text, const char* tag)
{
    Number number;
    number.value = Naive::element(text, QLatin1String(tag)).toInt(&number.ok, 10);
    return number;
}

using Execute = char* (*)(char*, ArithmParamMgr*);

QString resultOf(Execute execute, const QString& text, ArithmParamMgr* store)
{
    QByteArray utf8 = text.toUtf8();
    return QString::fromUtf8(execute(utf8.data(), store));
}

// ---- The scratch folder -----------------------------------------------------------------------------------------

/// Works in the scratch folder for a scope: the fuzzer itself reads and writes files beside where it was started.
class ScratchVisit
{
public:
    ScratchVisit() : m_strBack(QDir::currentPath())
    {
        // Deep enough that the folder above, the furthest that a text can reach, is still ours.
        static const QString s_strFolder = Fuzz::scratchFolder() + QStringLiteral("/above/here");
        Fuzz::expect(QDir().mkpath(s_strFolder) && QDir::setCurrent(s_strFolder), "the scratch folder can be made");
    }
    ~ScratchVisit() { QDir::setCurrent(m_strBack); }
    ScratchVisit(const ScratchVisit&) = delete;
    ScratchVisit& operator=(const ScratchVisit&) = delete;

private:
    QString m_strBack;
};

void writePictures()
{
    QDir().mkdir(QStringLiteral("in"));
    QImage picture(5, 3, QImage::Format_RGB888);
    picture.fill(Qt::red);
    picture.save(QStringLiteral("in/c.png"));
    picture.save(QStringLiteral("in/c.jpg"));
    picture.convertToFormat(QImage::Format_Grayscale8).save(QStringLiteral("in/g.bmp"));
}

bool isSame(const struct stat& a, const struct stat& b)
{
    return a.st_ino == b.st_ino && a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

void emptyFolder(const QDir& folder, const QStringList& keep)
{
    const auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QString& name : folder.entryList(all)) {
        if (!keep.contains(name) && !QFile::remove(folder.filePath(name)))
            QDir(folder.filePath(name)).removeRecursively();
    }
}

/// Empties the scratch folder, but for the pictures unless something was written among them.
void emptyScratchFolder()
{
    static struct stat s_cPictures = {};
    struct stat now = {};
    const bool kept = ::stat("in", &now) == 0 && isSame(now, s_cPictures);
    emptyFolder(QDir(QStringLiteral(".")), kept ? QStringList(QStringLiteral("in")) : QStringList());
    emptyFolder(QDir(QStringLiteral("..")), QStringList(QStringLiteral("here")));
    if (kept)
        return;
    writePictures();
    Fuzz::expect(::stat("in", &s_cPictures) == 0, "the pictures are there");
}

/// The text with nothing left that leads out of the scratch folder: single slashes between letters, and in markers.
QString harmless(QString text)
{
    const auto isName = [&text](int i) { return i >= 0 && i < text.size() && text.at(i).isLetterOrNumber(); };
    for (int i = 0; i < text.size(); ++i) {
        const bool isMarker = i > 0 && text.at(i - 1) == '<';
        if (text.at(i) == '/' && !isMarker && !(isName(i - 1) && isName(i + 1)))
            text[i] = '_';
    }
    // Without a folder the picture would go into the root of the file system.
    if (Naive::element(text, QStringLiteral("BasePath")).isEmpty())
        text.prepend(QStringLiteral("<BasePath>out</BasePath>"));
    return text;
}

// ---- The steps --------------------------------------------------------------------------------------------------

QByteArray pixelsOf(const ParamDIB* record)
{
    const auto bytes = PictureLayout::colourBytes(record->getWidth(), record->getHeight());
    return QByteArray(reinterpret_cast<const char*>(record->getDIB()), static_cast<int>(bytes));
}

void checkSaving(const QString& text, ArithmParamMgr* store)
{
    ParamDIB* const record = store->getParamDIB(StoreMaker::Colour);
    const QByteArray before = pixelsOf(record);
    Fuzz::expectEqual(resultOf(&Saving::execute, text, store), QString(), "saving tells nothing");

    // Saving a colour record leaves its first and third bytes exchanged; nothing else touches it.
    const Number id = numberIn(text, "PicID");
    const bool exchanged = numberIn(text, "Wnd").value == 4 && id.value == StoreMaker::Colour &&
                           Naive::element(text, QStringLiteral("PicType")) == QLatin1String("RGB");
    QByteArray wanted = before;
    const int stride = static_cast<int>(PictureLayout::colourStride(record->getWidth()));
    for (int y = 0; exchanged && y < record->getHeight(); ++y) {
        for (int x = 0; x < record->getWidth(); ++x)
            std::swap(wanted.data()[y * stride + 3 * x], wanted.data()[y * stride + 3 * x + 2]);
    }
    Fuzz::expect(pixelsOf(record) == wanted, "the colour record after saving");
}

/// A file of that name, or one that has an ending behind it: Qt tries those that it knows.
bool existsAsPicture(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || !info.dir().entryList({info.fileName() + QStringLiteral(".*")}, QDir::Files).isEmpty();
}

void checkLoading(const QString& text, ArithmParamMgr* store)
{
    const int colours = store->requestParamDIBMap()->size();
    const int greys = store->requestParamGray8Map()->size();
    const bool exists = existsAsPicture(Naive::element(text, QStringLiteral("FilePath")));
    Fuzz::expectEqual(resultOf(&Loading::execute, text, store), QString(), "loading tells nothing");
    if (exists)
        return;
    Fuzz::expect(store->requestParamDIBMap()->size() == colours && store->requestParamGray8Map()->size() == greys,
                 "a file that does not exist makes no record");
}

QString writerResult(const QString& text)
{
    const Number disk = numberIn(text, "MemDisk");
    if (!disk.ok || static_cast<unsigned>(disk.value) > 5)
        return QStringLiteral("指定的内存盘:") + QChar(disk.ok ? disk.value & 0xFF : 0) + QStringLiteral(" 不存在.");
    if (!numberIn(text, "InputID").ok)
        return QStringLiteral("指定的输入变量不存在.");
    const QString type = Naive::element(text, QStringLiteral("InputType"));
    if (type != QLatin1String("RGB") && type != QLatin1String("Gray8"))
        return QStringLiteral("不支持的输入数据格式:") + type;
    return {};
}

/// Takes everything out of the disks, so that the next picture never waits; how many there were.
int drainDisks()
{
    int count = 0;
    for (int i = 0; i < MemoryDisk::DiskNum; ++i) {
        MemoryDisk* const disk = MemoryDisk::getInstance(i);
        for (; disk->getDIBPreparedNum() > 0; ++count)
            disk->releaseDIB(disk->requestDIB());
        for (; disk->getGray8PreparedNum() > 0; ++count)
            disk->releaseGray8(disk->requestGray8());
    }
    return count;
}

void checkWriter(const QString& text, ArithmParamMgr* store)
{
    // A result is a C string: a zero character ends it.
    const QString wanted = writerResult(text);
    const QString found = resultOf(&MemoryDisk::execute, text, store);
    Fuzz::expectEqual(found, wanted.left(wanted.indexOf(QChar(0))), "the result of the memory disk step");
    const int id = numberIn(text, "InputID").value;
    const bool colour = Naive::element(text, QStringLiteral("InputType")) == QLatin1String("RGB");
    const bool filled = store->getParamDIB(StoreMaker::Colour)->getWidth() > 0;
    const bool written = wanted.isEmpty() && filled && id == (colour ? StoreMaker::Colour : StoreMaker::Gray8);
    Fuzz::expect(drainDisks() == (written ? 1 : 0), "pictures on the memory disks");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ScratchVisit visit;
    emptyScratchFolder();
    FuzzInput input(data, size);
    const QString text = harmless(QString::fromUtf8(input.text()));
    ArithmParamMgr* const store = StoreMaker::make(input);
    checkWriter(text, store);
    checkSaving(text, store);
    checkLoading(text, store);
    ArithmParamMgr::deleteInstance(store);
    return 0;
}
