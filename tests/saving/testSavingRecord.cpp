#include "saving/savingName.h"
#include "savingSupport.h"

#include <QFileInfo>
#include <QtTest>

#include <sys/fsuid.h>
#include <unistd.h>

using namespace PictureSupport;
using namespace SavingSupport;

namespace {

/// Lets the files of this thread be reached as an ordinary user does for a scope; the super user may write everywhere.
class AsOrdinaryUser
{
public:
    AsOrdinaryUser()
    {
        if (::geteuid() == 0)
            ::setfsuid(Nobody);
    }
    ~AsOrdinaryUser() { ::setfsuid(::geteuid()); }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

private:
    static constexpr uid_t Nobody = 65534;
};

}  // namespace

class TestSavingRecord : public QObject
{
    Q_OBJECT

    Store m_cStore;
    std::unique_ptr<Folder> m_pcFolder;
    Option m_cOption;  ///< Writes cam.bmp into the folder.

    void save() { QCOMPARE(execute<Saving>(m_cOption.text(), m_cStore.get()), QString()); }
    QImage saved(const char* name = "cam.bmp") const { return QImage(m_pcFolder->path(name)); }

    ParamGray8* greyRecord(int id, int width, int height)
    {
        ParamGray8* record = m_cStore->getParamGray8(id);
        record->resize(width, height);
        for (int i = 0; i < width * height; ++i)
            record->getGray8()[i] = static_cast<unsigned char>(i * 3 + 1);
        return record;
    }

private Q_SLOTS:
    void init()
    {
        m_cStore = makeStore();
        m_pcFolder = std::make_unique<Folder>();
        m_cOption = sameFileOption(m_pcFolder->path());
    }

    void colourRecordIsWrittenInTrueColours_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("name");
        QTest::newRow("png") << 1 << "cam.png";
        QTest::newRow("bmp") << 2 << "cam.bmp";
    }

    void colourRecordIsWrittenInTrueColours()
    {
        QFETCH(int, format);
        QFETCH(QString, name);
        plainRecord(*m_cStore, 3, 3, 2, 0xFF102030);
        m_cOption.format = format;
        save();
        const QImage picture(m_pcFolder->path(name));
        QCOMPARE(picture.size(), QSize(3, 2));
        QCOMPARE(picture.pixel(2, 1), qRgb(0x10, 0x20, 0x30));
    }

    void secondSaveOfAColourRecordIsExchangedOnPurpose()
    {
        ParamDIB* record = plainRecord(*m_cStore, 3, 3, 2, 0xFF102030);
        save();
        QCOMPARE(saved().pixel(0, 0), qRgb(0x10, 0x20, 0x30));
        QCOMPARE(bytesOf(*record).left(3), QByteArray("\x10\x20\x30"));
        QCOMPARE(bytesOf(*record).mid(18, 3), QByteArray("\x10\x20\x30"));  // the last pixel of the second row
        save();
        QCOMPARE(saved().pixel(0, 0), qRgb(0x30, 0x20, 0x10));
        QCOMPARE(bytesOf(*record).left(3), QByteArray("\x30\x20\x10"));
    }

    void recordIsExchangedEvenWhenTheFileCannotBeWritten()
    {
        ParamDIB* record = plainRecord(*m_cStore, 3, 3, 2, 0xFF102030);
        m_cOption.folder = m_pcFolder->path("no/such/folder");
        save();
        QCOMPARE(bytesOf(*record).left(3), QByteArray("\x10\x20\x30"));
    }

    void greyRecordOfAnyWidthIsWritten_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("rows of odd length") << 5;
        QTest::newRow("rows of four bytes each") << 8;
        QTest::newRow("one pixel") << 1;
    }

    void greyRecordOfAnyWidthIsWritten()
    {
        QFETCH(int, width);
        const ParamGray8* record = greyRecord(3, width, 4);
        const QByteArray before = bytesOf(*record);
        m_cOption.type = QStringLiteral("Gray");
        save();
        const QImage picture = saved();
        QCOMPARE(picture.size(), QSize(width, 4));
        QCOMPARE(picture.format(), QImage::Format_Indexed8);
        QCOMPARE(picture.colorCount(), 256);
        for (int i = 0; i < 256; ++i)
            QCOMPARE(picture.color(i), qRgb(i, i, i));
        for (int i = 0; i < width * 4; ++i) {
            const int value = i * 3 + 1;
            QCOMPARE(picture.pixel(i % width, i / width), qRgb(value, value, value));
        }
        QCOMPARE(bytesOf(*record), before);
    }

    void greyRecordOfOddWidthIsWrittenInEveryFormat_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("name");
        QTest::newRow("jpg") << 0 << "cam.jpg";
        QTest::newRow("png") << 1 << "cam.png";
        QTest::newRow("bmp") << 2 << "cam.bmp";
    }

    void greyRecordOfOddWidthIsWrittenInEveryFormat()
    {
        QFETCH(int, format);
        QFETCH(QString, name);
        const ParamGray8* record = greyRecord(3, 21, 19);
        QImage expected(21, 19, QImage::Format_Indexed8);  // with rows of 24 bytes
        for (int i = 0; i < 256; ++i)
            expected.setColor(i, qRgb(i, i, i));
        for (int i = 0; i < 21 * 19; ++i)
            expected.scanLine(i / 21)[i % 21] = record->getGray8()[i];
        m_cOption.type = QStringLiteral("Gray");
        m_cOption.format = format;
        save();
        const QImage picture(m_pcFolder->path(name));
        QCOMPARE(picture.size(), QSize(21, 19));
        const QString byQt = m_pcFolder->save(expected, "qt" + name);
        QCOMPARE(picture, QImage(byQt));
        if (name.endsWith(QLatin1String("bmp"))) {
            // Nothing of what lies behind the record: the three bytes that fill up each row are zero.
            const QByteArray file = bytesOf(m_pcFolder->path(name));
            for (int end = file.size(); end > file.size() - 19 * 24; end -= 24)
                QCOMPARE(file.mid(end - 3, 3), QByteArray(3, '\0'));
        }
    }

    void jpegIsWritten()
    {
        plainRecord(*m_cStore, 3, 16, 16, 0xFFC04020);
        greyRecord(3, 5, 3);
        m_cOption.format = 0;
        save();
        QVERIFY(qAbs(qRed(saved("cam.jpg").pixel(8, 8)) - 0xC0) < 8);
        m_cOption.type = QStringLiteral("Gray");
        save();
        QCOMPARE(saved("cam.jpg").size(), QSize(5, 3));
    }

    void nothingIsWrittenForWhatIsNotThere_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("id");
        QTest::addColumn<int>("wnd");
        QTest::newRow("missing colour record") << "RGB" << 9 << 4;
        QTest::newRow("missing grey record") << "Gray" << 9 << 4;
        QTest::newRow("empty colour record") << "RGB" << 5 << 4;
        QTest::newRow("empty grey record") << "Gray" << 5 << 4;
        QTest::newRow("negative identifier") << "RGB" << -1 << 4;
        QTest::newRow("very negative identifier") << "Gray" << -7 << 4;
        QTest::newRow("type in small letters") << "rgb" << 3 << 4;
        QTest::newRow("type of another algorithm") << "Gray8" << 3 << 4;
        QTest::newRow("no type") << "" << 3 << 4;
        QTest::newRow("absent view") << "RGB" << 3 << 0;
        QTest::newRow("view below all") << "RGB" << 3 << -1;
        QTest::newRow("view beyond all") << "RGB" << 3 << 5;
    }

    void nothingIsWrittenForWhatIsNotThere()
    {
        QFETCH(QString, type);
        QFETCH(int, id);
        QFETCH(int, wnd);
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        greyRecord(3, 2, 2);
        greyRecord(-7, 2, 2);
        m_cStore->getParamDIB(5);
        m_cStore->getParamGray8(5);
        m_cOption.type = type;
        m_cOption.id = id;
        m_cOption.wnd = wnd;
        save();
        QCOMPARE(m_pcFolder->names(), QStringList());
        QCOMPARE(m_cStore->requestParamDIBMap()->keys(), (QList<int>{3, 5}));
        QCOMPARE(m_cStore->requestParamGray8Map()->keys(), (QList<int>{-7, 3, 5}));
        QCOMPARE(execute<Saving>(m_cOption.text(), nullptr), QString());
        QCOMPARE(m_pcFolder->names(), QStringList());
    }

    void absentIdentifierIsRecordZero()
    {
        plainRecord(*m_cStore, 0, 2, 2, 0xFF102030);
        execute<Saving>(m_cOption.text().replace("<PicID>3</PicID>", ""), m_cStore.get());
        QCOMPARE(m_pcFolder->names(), QStringList{"cam.bmp"});
    }

    void filesThatAKilledProgramLeftBehindAreNotInTheWay()
    {
        // After a restart a board gives the program the same process number, and it counts from 0 again.
        constexpr int LeftBehind = 2000;
        for (int i = 0; i < LeftBehind; ++i) {
            QFile file(m_pcFolder->path(qPrintable(QStringLiteral(".lumivant-%1-%2.part").arg(::getpid()).arg(i))));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        greyRecord(3, 8, 4);
        m_cOption.type = QStringLiteral("Gray");
        save();
        QCOMPARE(saved().size(), QSize(8, 4));
    }

    void fullDiskLeavesNoFile_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("jpg") << 0;
        QTest::newRow("png") << 1;
        QTest::newRow("bmp") << 2;
    }

    void fullDiskLeavesNoFile()
    {
        QFETCH(int, format);
        m_cOption.format = format;
        fillWithNoise(3, 200, 100);
        const FullDisk disk(4096);
        save();
        QCOMPARE(m_pcFolder->names(), QStringList());
    }

    void fullDiskLeavesTheOlderFile()
    {
        plainRecord(*m_cStore, 3, 4, 4, 0xFF102030);
        save();
        const QByteArray before = bytesOf(m_pcFolder->path("cam.bmp"));
        fillWithNoise(3, 200, 100);
        {
            const FullDisk disk(4096);
            save();
        }
        QCOMPARE(m_pcFolder->names(), QStringList{"cam.bmp"});
        QCOMPARE(bytesOf(m_pcFolder->path("cam.bmp")), before);
        save();
        QCOMPARE(saved().size(), QSize(200, 100));
    }

    void folderInTheWayLeavesEverythingAsItIs()
    {
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        QVERIFY(QDir().mkpath(m_pcFolder->path("cam.bmp/inside")));
        save();
        QCOMPARE(m_pcFolder->names(), QStringList{"cam.bmp"});
        QVERIFY(QFileInfo(m_pcFolder->path("cam.bmp/inside")).isDir());
    }

    void basePathThatIsAFileWritesNothing()
    {
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        m_cOption.folder = m_pcFolder->write("text", "plain");
        save();
        QCOMPARE(bytesOf(m_pcFolder->path("plain")), QByteArray("text"));
        QCOMPARE(m_pcFolder->names(), QStringList{"plain"});
    }

    void readOnlyFolderWritesNothing()
    {
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        QVERIFY(QFile::setPermissions(m_pcFolder->path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                                                              QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther));
        {
            const AsOrdinaryUser user;
            save();
        }
        QVERIFY(QFile::setPermissions(m_pcFolder->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(m_pcFolder->names(), QStringList());
    }

    void overwrittenFileKeepsItsPermissionsAndItsLink()
    {
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        const QString real = m_pcFolder->write("old", "real.bmp");
        QVERIFY(QFile::setPermissions(real, QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(QFile::link(real, m_pcFolder->path("cam.bmp")));
        save();
        QVERIFY(QFileInfo(m_pcFolder->path("cam.bmp")).isSymLink());
        QVERIFY(bytesOf(real).startsWith("BM"));
        QVERIFY(!(QFileInfo(real).permissions() & (QFile::ReadGroup | QFile::ReadOther)));
    }

    void longestNameOfAFileIsWritten()
    {
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        m_cOption.string = QString(251, QLatin1Char('n'));
        save();
        QCOMPARE(m_pcFolder->names(), QStringList{m_cOption.string + ".bmp"});
        m_cOption.string = QString(400, QLatin1Char('n'));
        save();
        QCOMPARE(m_pcFolder->names().size(), 1);
    }

private:
    /// Nothing that an encoder could make small.
    void fillWithNoise(int id, int width, int height)
    {
        ParamDIB* record = m_cStore->getParamDIB(id);
        record->resize(width, height);
        unsigned state = 1;
        for (qint64 i = 0; i < PictureLayout::colourBytes(width, height); ++i) {
            state = state * 1664525U + 1013904223U;
            record->getDIB()[i] = static_cast<unsigned char>(state >> 24);
        }
    }
};

QTEST_GUILESS_MAIN(TestSavingRecord)
#include "testSavingRecord.moc"
