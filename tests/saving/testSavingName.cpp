#include "saving/savingName.h"
#include "savingSupport.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QtTest>

using namespace PictureSupport;
using namespace SavingSupport;

class TestSavingName : public QObject
{
    Q_OBJECT

    Store m_cStore;
    std::unique_ptr<Folder> m_pcFolder;
    int m_nFirstNumber = -1;  ///< Of the program, before any test.

    /// Runs a step on a small picture; what is then in the folder.
    QStringList save(Option option)
    {
        if (option.folder.isNull())
            option.folder = m_pcFolder->path();
        if (!execute<Saving>(option.text(), m_cStore.get()).isEmpty())
            return {QStringLiteral("not the empty result")};
        return m_pcFolder->names();
    }

private Q_SLOTS:
    void initTestCase() { m_nFirstNumber = gNumber; }
    void init()
    {
        m_cStore = makeStore();
        plainRecord(*m_cStore, 3, 2, 2, 0xFF102030);
        m_pcFolder = std::make_unique<Folder>();
        gNumber = 0;
    }

    void namesOfTheAlgorithm()
    {
        QCOMPARE(Saving::getName(), QStringLiteral("保存图像"));
        QCOMPARE(Saving::getClass(), QStringLiteral("系统"));
        QCOMPARE(Saving::getID(), "KW_Saving");
        QCOMPARE(Saving::s_ID, "KW_Saving");
    }

    void runningNumberStartsAtZero() { QCOMPARE(m_nFirstNumber, 0); }

    void successivePassesCountUp()
    {
        QCOMPARE(save({}), QStringList{"cam_0.bmp"});
        QCOMPARE(save({}), (QStringList{"cam_0.bmp", "cam_1.bmp"}));
        QCOMPARE(save({}), (QStringList{"cam_0.bmp", "cam_1.bmp", "cam_2.bmp"}));
    }

    void exchangePutsTheNumberFirst()
    {
        Option option;
        option.exchange = 1;
        save(option);
        QCOMPARE(save(option), (QStringList{"0_cam.bmp", "1_cam.bmp"}));
    }

    void onlyOneInExgExchanges()
    {
        Option option;
        option.exchange = 2;
        QCOMPARE(save(option), QStringList{"cam_0.bmp"});
    }

    void withoutIdentityEveryPassOverwritesTheSameFile()
    {
        Option option;
        option.identity = 2;
        option.separator.clear();
        option.format = 0;
        save(option);
        plainRecord(*m_cStore, 3, 5, 4, 0xFF102030);
        QCOMPARE(save(option), QStringList{"cam.jpg"});
        QCOMPARE(QImage(m_pcFolder->path("cam.jpg")).size(), QSize(5, 4));
        QCOMPARE(gNumber.load(), 0);
    }

    void separatorStaysWithoutIdentity()
    {
        Option option;
        option.identity = 3;
        QCOMPARE(save(option), QStringList{"cam_.bmp"});
        option.exchange = 1;
        QCOMPARE(save(option), (QStringList{"_cam.bmp", "cam_.bmp"}));
    }

    void timeStampHasNoPadding()
    {
        Option option;
        option.identity = 0;
        const QDateTime before = QDateTime::currentDateTime();
        const QStringList names = save(option);
        const QDateTime after = QDateTime::currentDateTime();

        QCOMPARE(names.size(), 1);
        const QRegularExpression pattern(
            QStringLiteral("^cam_\\[(\\d+)\\.(\\d+)\\.(\\d+)\\]\\[(\\d+)\\.(\\d+)\\.(\\d+)\\]\\[(\\d+)\\]\\.bmp$"));
        const QRegularExpressionMatch match = pattern.match(names.first());
        QVERIFY2(match.hasMatch(), qPrintable(names.first()));
        QList<int> numbers;
        for (int i = 1; i <= 7; ++i) {
            numbers += match.captured(i).toInt();
            QCOMPARE(match.captured(i), QString::number(numbers.last()));
        }
        const QDateTime stamp(QDate(numbers[0], numbers[1], numbers[2]),
                              QTime(numbers[3], numbers[4], numbers[5], numbers[6]));
        QVERIFY(before <= stamp && stamp <= after);
    }

    void formatChoosesTheSuffixAndTheFormat_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("magic");
        QTest::newRow("jpg") << 0 << "cam_0.jpg" << QByteArray("\xFF\xD8");
        QTest::newRow("png") << 1 << "cam_0.png" << QByteArray("\x89PNG");
        QTest::newRow("bmp") << 2 << "cam_0.bmp" << QByteArray("BM");
    }

    void formatChoosesTheSuffixAndTheFormat()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, magic);
        QFETCH(int, format);
        Option option;
        option.format = format;
        QCOMPARE(save(option), QStringList{name});
        QVERIFY(bytesOf(m_pcFolder->path(name)).startsWith(magic));
    }

    void formatOfNoSuffixWritesNothing()
    {
        Option option;
        for (int format : {3, -1, 99}) {
            option.format = format;
            QCOMPARE(save(option), QStringList());
        }
    }

    void suffixOfTheStringCountsWhenTheFormatHasNone()
    {
        Option option;
        option.format = 3;
        option.identity = 2;
        option.separator.clear();
        option.string = QStringLiteral("own.PNG");
        QCOMPARE(save(option), QStringList{"own.PNG"});
        QVERIFY(bytesOf(m_pcFolder->path("own.PNG")).startsWith("\x89PNG"));
    }

    void absentNumbersCountAsZero()
    {
        // Time stamp, ".jpg", string first, view 0: which is absent here, so there is nothing to write.
        QCOMPARE(execute<Saving>("<BasePath>" + m_pcFolder->path() + "</BasePath>", m_cStore.get()), QString());
        QCOMPARE(m_pcFolder->names(), QStringList());
        execute<Saving>("<BasePath>" + m_pcFolder->path() + "</BasePath><Wnd>4</Wnd><PicType>RGB</PicType>" +
                            "<PicID>3</PicID><Identity>x</Identity>",
                        m_cStore.get());
        QCOMPARE(m_pcFolder->names().size(), 1);
        QVERIFY(m_pcFolder->names().first().endsWith("].jpg"));
    }

    void numberIsTakenEvenWhenNothingIsWritten()
    {
        Option option;
        option.type = QStringLiteral("other");
        QCOMPARE(save(option), QStringList());
        QCOMPARE(save({}), QStringList{"cam_1.bmp"});
    }

    void stringRecordNamesTheFile()
    {
        m_cStore->getParamStrings(12)->replaceAll({QStringLiteral("部件").toUtf8(), "second"});
        Option option;
        option.string = QStringLiteral("12");
        option.isStringID = 1;
        QCOMPARE(save(option), QStringList{QStringLiteral("部件_0.bmp")});
    }

    void stringRecordWithoutStringsGivesAnEmptyPart()
    {
        m_cStore->getParamStrings(12);
        Option option;
        option.string = QStringLiteral("12");
        option.isStringID = 1;
        QCOMPARE(save(option), QStringList{"_0.bmp"});
        option.exchange = 1;
        QCOMPARE(save(option), (QStringList{"1_.bmp", "_0.bmp"}));
    }

    void missingStringRecordGivesAnEmptyPartAndIsNotMade()
    {
        Option option;
        option.string = QStringLiteral("12");
        option.isStringID = 1;
        QCOMPARE(save(option), QStringList{"_0.bmp"});
        QVERIFY(m_cStore->requestParamStringsMap()->isEmpty());
        option.string = QStringLiteral("no number");
        QCOMPARE(save(option), (QStringList{"_0.bmp", "_1.bmp"}));
    }

    void stringEndsAtItsFirstZeroByte()
    {
        m_cStore->getParamStrings(12)->append(QByteArray("ab\0cd", 5));
        Option option;
        option.string = QStringLiteral("12");
        option.isStringID = 1;
        QCOMPARE(save(option), QStringList{"ab_0.bmp"});
    }

    void longStringIsCutAtTheResultBuffer()
    {
        // 1023 bytes of "./" are the folder itself over and over; what follows is cut off.
        QByteArray string;
        while (string.size() < 1020)
            string += "./";
        string += "abcdef";
        m_cStore->getParamStrings(12)->append(string);
        Option option;
        option.string = QStringLiteral("12");
        option.isStringID = 1;
        QCOMPARE(save(option), QStringList{"abc_0.bmp"});
    }

    void anyPositiveIsStringIDMeansARecord()
    {
        m_cStore->getParamStrings(12)->append("part");
        Option option;
        option.string = QStringLiteral("12");
        option.isStringID = 2;
        QCOMPARE(save(option), QStringList{"part_0.bmp"});
    }

    void negativeIsStringIDMeansText()
    {
        Option option;
        option.isStringID = -1;
        option.string = QStringLiteral("12");
        QCOMPARE(save(option), QStringList{"12_0.bmp"});
    }

    void missingFolderIsMadeInItsLastLevelOnly()
    {
        Option option;
        option.folder = m_pcFolder->path("out");
        QCOMPARE(save(option), QStringList{"out"});
        QCOMPARE(QDir(option.folder).entryList(QDir::Files), QStringList{"cam_0.bmp"});

        option.folder = m_pcFolder->path("two/levels");
        QCOMPARE(save(option), QStringList{"out"});
    }

    void folderIsMadeEvenWhenNothingIsWritten()
    {
        Option option;
        option.folder = m_pcFolder->path("made");
        option.type = QStringLiteral("other");
        QCOMPARE(save(option), QStringList{"made"});
        QVERIFY(QDir(option.folder).isEmpty());
    }

    void folderMayEndWithASeparator()
    {
        Option option;
        option.folder = m_pcFolder->path() + "/";
        QCOMPARE(save(option), QStringList{"cam_0.bmp"});
    }

    void relativeFolderIsMadeBesideTheProgram()
    {
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_pcFolder->path()));
        Option option;
        option.folder = QStringLiteral("relative");
        const QStringList names = save(option);
        QVERIFY(QDir::setCurrent(before));
        QCOMPARE(names, QStringList{"relative"});
        QCOMPARE(QDir(m_pcFolder->path("relative")).entryList(QDir::Files), QStringList{"cam_0.bmp"});
    }

    void optionThatIsNullDoesNothing() { QCOMPARE(QByteArray(Saving::execute(nullptr, nullptr)), QByteArray()); }
};

QTEST_GUILESS_MAIN(TestSavingName)
#include "testSavingName.moc"
