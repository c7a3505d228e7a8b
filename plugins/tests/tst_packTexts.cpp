#include "blurOption.h"
#include "findAreasOption.h"
#include "findContoursOption.h"
#include "findCornersOption.h"
#include "findLinesOption.h"
#include "folderOption.h"
#include "resultBuffer.h"
#include "sourceEntry.h"
#include "stepEntry.h"
#include "taggedText.h"
#include "testPatternOption.h"
#include "thresholdOption.h"
#include "toGray16Option.h"
#include "toGrayOption.h"

#include "packLibraries.h"

#include <QtTest>

#include <opencv2/core.hpp>

#include <new>
#include <stdexcept>
#include <thread>

/// The option texts of the pack and what the entry points share.
class TestPackTexts : public QObject
{
    Q_OBJECT

private slots:
    void numberOutsideItsRangeIsMovedInside_data();
    void numberOutsideItsRangeIsMovedInside();
    void tagsAreFoundWithoutRegardToCase();
    void optionReadsBackAsWritten_data();
    void optionReadsBackAsWritten();
    void optionSurvivesLineFeedsAroundItsElements_data() { optionReadsBackAsWritten_data(); }
    void optionSurvivesLineFeedsAroundItsElements();
    void emptyTextGivesUsableDefaults();
    void evenWindowsBecomeOdd();
    void nameWithMarkupIsNotTaken();
    void everyThreadHasAResultBufferOfItsOwn();
    void exceptionBecomesResultText_data();
    void exceptionBecomesResultText();
    void nothingThatASourceThrowsLeavesItsEntryPoints();
    void nothingThatADialogThrowsLeavesItsEntryPoint();
    void rateStaysPossible_data();
    void rateStaysPossible();
};

void TestPackTexts::numberOutsideItsRangeIsMovedInside_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::newRow("inside") << "<N>7</N>" << 7;
    QTest::newRow("blanks around") << "<N>\n 7 \n</N>" << 7;
    QTest::newRow("too small") << "<N>-3</N>" << 1;
    QTest::newRow("too large") << "<N>11</N>" << 10;
    QTest::newRow("does not fit an int") << "<N>99999999999999999999</N>" << 5;
    QTest::newRow("no number") << "<N>abc</N>" << 5;
    QTest::newRow("empty") << "<N></N>" << 5;
    QTest::newRow("absent") << "" << 5;
    QTest::newRow("not closed") << "<N>7" << 5;
}

void TestPackTexts::numberOutsideItsRangeIsMovedInside()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QCOMPARE(TaggedReader(text).number(QStringLiteral("N"), 5, 1, 10), expected);
}

void TestPackTexts::tagsAreFoundWithoutRegardToCase()
{
    QCOMPARE(TaggedReader(QStringLiteral("<FOLDER>a b</folder>")).text(QStringLiteral("Folder")),
             QStringLiteral("a b"));
}

namespace {
using RoundTrip = QString (*)(const QString&);
template <typename Option>
QString roundTrip(const QString& text)
{
    return Option::read(text).write();
}
}  // namespace
Q_DECLARE_METATYPE(RoundTrip)

void TestPackTexts::optionReadsBackAsWritten_data()
{
    QTest::addColumn<RoundTrip>("roundTrip");
    QTest::addColumn<QString>("text");
    const QString output = QStringLiteral("<OutputID>8</OutputID><OutputName>结果</OutputName>");
    const QString gray = QStringLiteral("<InputType>Gray8</InputType><InputID>7</InputID>");
    const QString colour = QStringLiteral("<InputType>RGB</InputType><InputID>7</InputID>");
    QTest::newRow("toGray") << RoundTrip(&roundTrip<ToGrayOption>) << colour + output;
    QTest::newRow("toGray16") << RoundTrip(&roundTrip<ToGray16Option>) << colour + output;
    QTest::newRow("blur") << RoundTrip(&roundTrip<BlurOption>) << colour + output + "<Method>2</Method><Size>9</Size>";
    QTest::newRow("threshold") << RoundTrip(&roundTrip<ThresholdOption>)
                               << gray + output +
                                      "<Method>1</Method><Value>77</Value><BlockSize>15</BlockSize>"
                                      "<Offset>-4</Offset><Invert>1</Invert>";
    QTest::newRow("findAreas") << RoundTrip(&roundTrip<FindAreasOption>)
                               << gray +
                                      "<AreasID>8</AreasID><AreasName>a</AreasName><CountID>9</CountID>"
                                      "<CountName>c</CountName><MinSize>30</MinSize><MaxSize>4000</MaxSize>"
                                      "<Print>1</Print><WhenNone>2</WhenNone><SkipSteps>3</SkipSteps>";
    QTest::newRow("findContours") << RoundTrip(&roundTrip<FindContoursOption>)
                                  << gray +
                                         "<PolysID>8</PolysID><PolysName>p</PolysName><MinSize>11</MinSize>"
                                         "<MinPoints>4</MinPoints><Tolerance>6</Tolerance>";
    QTest::newRow("findLines") << RoundTrip(&roundTrip<FindLinesOption>)
                               << gray +
                                      "<LinesID>8</LinesID><LinesName>l</LinesName><LowEdge>1</LowEdge>"
                                      "<HighEdge>2</HighEdge><Votes>3</Votes><MinLength>4</MinLength>"
                                      "<MaxGap>5</MaxGap>";
    QTest::newRow("findCorners") << RoundTrip(&roundTrip<FindCornersOption>)
                                 << gray +
                                        "<PointsID>8</PointsID><PointsName>p</PointsName><MaxCount>12</MaxCount>"
                                        "<Quality>13</Quality><MinDistance>14</MinDistance>";
    QTest::newRow("pictureFolder") << RoundTrip(&roundTrip<FolderOption>)
                                   << "<Folder>图 片/a</Folder><Loop>0</Loop><Rate>2.5</Rate>";
    QTest::newRow("testPattern") << RoundTrip(&roundTrip<TestPatternOption>)
                                 << "<Width>33</Width><Height>44</Height><Discs>5</Discs><Bars>6</Bars>"
                                    "<Text>0</Text><Rate>0</Rate>";
}

void TestPackTexts::optionReadsBackAsWritten()
{
    QFETCH(RoundTrip, roundTrip);
    QFETCH(QString, text);
    QCOMPARE(roundTrip(text), text);
}

void TestPackTexts::optionSurvivesLineFeedsAroundItsElements()
{
    QFETCH(RoundTrip, roundTrip);
    QFETCH(QString, text);
    const QString padded = QStringLiteral("\n") +
                           QString(text).replace(QStringLiteral("><"), QStringLiteral(">\r\n<")) +
                           QStringLiteral("\r\n");
    QCOMPARE(roundTrip(padded), text);
}

void TestPackTexts::emptyTextGivesUsableDefaults()
{
    const TestPatternOption pattern = TestPatternOption::read(QString());
    QCOMPARE(pattern.scene.width, 640);
    QCOMPARE(pattern.scene.height, 480);
    QCOMPARE(pattern.rate, 10.0);
    const FolderOption folder = FolderOption::read(QString());
    QVERIFY(folder.folder.isEmpty());
    QVERIFY(folder.loop);
    QCOMPARE(FindAreasOption::read(QString()).areas.id, -1);
    QCOMPARE(FindAreasOption::read(QStringLiteral("<AreasID>0</AreasID>")).areas.id, -1);
}

void TestPackTexts::evenWindowsBecomeOdd()
{
    QCOMPARE(BlurOption::read(QStringLiteral("<Size>4</Size>")).size, 5);
    QCOMPARE(BlurOption::read(QStringLiteral("<Size>100</Size>")).size, 99);
    QCOMPARE(ThresholdOption::read(QStringLiteral("<BlockSize>2</BlockSize>")).blockSize, 3);
    QCOMPARE(ThresholdOption::read(QStringLiteral("<BlockSize>20</BlockSize>")).blockSize, 21);
}

void TestPackTexts::nameWithMarkupIsNotTaken()
{
    OutputRef output;
    output.name = QStringLiteral("old");
    output.rename(QStringLiteral("a</OutputName>"));
    QCOMPARE(output.name, QStringLiteral("old"));
    output.rename(QStringLiteral("  "));
    QCOMPARE(output.name, QStringLiteral("old"));
    output.rename(QStringLiteral(" new "));
    QCOMPARE(output.name, QStringLiteral("new"));
}

void TestPackTexts::everyThreadHasAResultBufferOfItsOwn()
{
    const char* mine = keepText(QStringLiteral("一"));
    QByteArray other;
    std::thread([&other] { other = keepText(QStringLiteral("two")); }).join();
    QCOMPARE(QByteArray(mine), QByteArray("\xE4\xB8\x80"));
    QCOMPARE(other, QByteArray("two"));
    QCOMPARE(QByteArray(keepText(QString())), QByteArray(""));
}

void TestPackTexts::exceptionBecomesResultText_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("expected");
    QTest::newRow("OpenCV") << 0 << QStringLiteral("处理失败: bad size");
    QTest::newRow("standard") << 1 << QStringLiteral("处理失败: out of range");
    QTest::newRow("anything") << 2 << QStringLiteral("处理失败: ");
}

namespace {
QString throwKind(const QString& kind, ArithmParamMgr&)
{
    if (kind == QLatin1String("0"))
        throw cv::Exception(-1, "bad size", "f", "file", 1);
    if (kind == QLatin1String("1"))
        throw std::out_of_range("out of range");
    throw 1;
}
}  // namespace

void TestPackTexts::exceptionBecomesResultText()
{
    QFETCH(int, kind);
    QFETCH(QString, expected);
    const StorePtr store = newStore();
    QByteArray option = QByteArray::number(kind);
    QCOMPARE(QString::fromUtf8(StepEntry::execute(option.data(), store.get(), &throwKind)), expected);
}

namespace {

/// Throws wherever it is called.
struct ThrowingPlayer
{
    void setConfig(const QString&) { throw std::bad_alloc(); }
    void start() { throw std::runtime_error("start"); }
    void stop() { throw 1; }
    unsigned char* request(bool, int&, int&) { throw std::bad_alloc(); }
    void release() { throw 2; }
    QString lastError() const { throw std::bad_alloc(); }
};

struct ThrowingDialog
{
    explicit ThrowingDialog(const QString&) { throw std::bad_alloc(); }
    ThrowingDialog(const QString&, ArithmParamMgr&) { throw std::bad_alloc(); }
    int exec() { return 1; }
    QString configText() const { return QString(); }
    QString acceptedOption() { return QString(); }
};

}  // namespace

void TestPackTexts::nothingThatASourceThrowsLeavesItsEntryPoints()
{
    using Entry = SourceEntry<ThrowingPlayer, ThrowingDialog>;
    int width = 5;
    int height = 5;

    Entry::setConfig(1, "text");
    Entry::start(1);
    QVERIFY(!Entry::requestPicture(1, "RGB", &width, &height));
    Entry::releasePicture(1);
    Entry::stop(1);
    QVERIFY(!Entry::getLastError(1));
    QVERIFY(!Entry::showConfigDlg("text"));
    Entry::removeInstance(1);

    QCOMPARE(QSize(width, height), QSize(0, 0));
}

void TestPackTexts::nothingThatADialogThrowsLeavesItsEntryPoint()
{
    const StorePtr store = newStore();
    char option[] = "text";

    QVERIFY(!StepEntry::showDialog<ThrowingDialog>(option, store.get()));
}

void TestPackTexts::rateStaysPossible_data()
{
    QTest::addColumn<QString>("rate");
    QTest::addColumn<double>("expected");
    QTest::newRow("usual") << "12.5" << 12.5;
    QTest::newRow("no limit") << "0" << 0.0;
    QTest::newRow("negative is no limit") << "-3" << 0.0;
    QTest::newRow("slowest") << "0.01" << 0.01;
    QTest::newRow("slower than slowest") << "0.004" << 0.01;
    QTest::newRow("next to nothing") << "1e-300" << 0.01;
    QTest::newRow("too fast") << "1e9" << 1000.0;
    QTest::newRow("infinite") << "inf" << 10.0;
    QTest::newRow("not a number") << "nan" << 10.0;
    QTest::newRow("a word") << "fast" << 10.0;
}

void TestPackTexts::rateStaysPossible()
{
    QFETCH(QString, rate);
    const QString text = QStringLiteral("<Rate>%1</Rate>").arg(rate);

    QTEST(FolderOption::read(text).rate, "expected");
    QTEST(TestPatternOption::read(text).rate, "expected");
}

QTEST_GUILESS_MAIN(TestPackTexts)
#include "tst_packTexts.moc"
