#include "dialogDriver.h"
#include "drawing/dlgDrawingConfig.h"
#include "paramStore/arithmParamMgr.h"

#include <QColorDialog>
#include <QLineEdit>

using namespace DialogDriver;

namespace {

const QStringList Kinds{"RGB", "Gray8", "Gray16", "Points", "Lines", "Polys", "Areas", "Strings"};

QString optionText(int kind, const QString& body)
{
    return QStringLiteral("<DataType>%1</DataType><DataID>1</DataID><Config>%2</Config>").arg(kind).arg(body);
}

QPushButton* colorButton(QWidget& dialog, const QString& kind)
{
    return child<QPushButton>(dialog, ("btnColor" + kind).toLatin1());
}

QColor colorOf(QWidget& dialog, const QString& kind)
{
    return colorButton(dialog, kind)->palette().button().color();
}

int indexOf(QWidget& dialog, const char* combo)
{
    return child<QComboBox>(dialog, combo)->currentIndex();
}

QString text(QWidget& dialog, const char* edit)
{
    return child<QLineEdit>(dialog, edit)->text();
}

}  // namespace

/// What each page writes for its controls, and what it shows of a text.
class DrawingDialogPagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_pcStore = ArithmParamMgr::newInstance();
        // One record of each kind, all under the same identifier.
        const QList<ArithmParam*> records{m_pcStore->getParamDIB(1),    m_pcStore->getParamGray8(1),
                                          m_pcStore->getParamGray16(1), m_pcStore->getParamPoints(1),
                                          m_pcStore->getParamLines(1),  m_pcStore->getParamPolys(1),
                                          m_pcStore->getParamAreas(1),  m_pcStore->getParamStrings(1)};
        for (ArithmParam* record : records)
            record->setName(QStringLiteral("one"));
    }
    void cleanup()
    {
        m_pcDialog.reset();
        ArithmParamMgr::deleteInstance(m_pcStore);
    }

    void combosHaveTheirItems_data()
    {
        QTest::addColumn<QStringList>("items");
        const QStringList sizes{"1", "2", "3", "4", "5", "6", "7", "8", "9"};
        for (const char* page : {"RGB", "Gray8", "Gray16"}) {
            QTest::newRow(QByteArray("cbScaleMode") + page)
                << QStringList{"原始大小", "横向合适", "纵向合适", "缩放到窗口"};
            QTest::newRow(QByteArray("cbPos") + page) << QStringList{"居中", "原点对齐"};
        }
        for (const char* page : {"Gray8", "Gray16"}) {
            QTest::newRow(QByteArray("cbLappedType") + page) << QStringList{"灰度", "色块"};
            QTest::newRow(QByteArray("cbMaskVal") + page) << QStringList{"0值", "非0"};
            QTest::newRow(QByteArray("cbMaskColor") + page) << QStringList{"黑", "白", "红"};
        }
        for (const char* page : {"Points", "Lines", "Polys"})
            QTest::newRow(QByteArray("cbSize") + page) << sizes;
        for (const char* combo : {"cbDspLengthLines", "cbDspAreaPolys", "cbDspAreaAreas"})
            QTest::newRow(combo) << QStringList{"不显示", "显示"};
    }
    void combosHaveTheirItems()
    {
        open(0, QString());
        QTEST(itemsOf(dialog(), QTest::currentDataTag()), "items");
    }

    void drawModesHaveTheirTexts()
    {
        open(0, QString());
        for (const QByteArray page : {"Gray8", "Gray16"}) {
            QCOMPARE(child<QRadioButton>(dialog(), "rbDrawModeNormal" + page)->text(), QStringLiteral("正常"));
            QCOMPARE(child<QRadioButton>(dialog(), "rbDrawModeLapped" + page)->text(), QStringLiteral("叠加(0值透明)"));
            QCOMPARE(child<QRadioButton>(dialog(), "rbDrawModeMask" + page)->text(), QStringLiteral("遮罩"));
            QVERIFY(child<QRadioButton>(dialog(), "rbDrawModeNormal" + page)->isChecked());
        }
    }

    void untouchedPageWritesItsFirstItems_data()
    {
        QTest::addColumn<QString>("body");
        const QString grey = QStringLiteral("<Scale>0</Scale><Pos>0</Pos><DrawMode><Val>0</Val></DrawMode>");
        QTest::newRow("0") << QStringLiteral("<Scale>0</Scale><Pos>0</Pos>");
        QTest::newRow("1") << grey;
        QTest::newRow("2") << grey;
        QTest::newRow("3") << QStringLiteral("<Size>0</Size><Color>-16711936</Color>");
        QTest::newRow("4") << QStringLiteral("<Size>0</Size><DspLen>0</DspLen><Color>-16711936</Color>");
        QTest::newRow("5") << QStringLiteral(
            "<BorderSize>0</BorderSize><BorderColor>-16711936</BorderColor><DspArea>0</DspArea>");
        QTest::newRow("6") << QStringLiteral("<DspArea>0</DspArea><Color>-16711936</Color>");
        QTest::newRow("7") << QStringLiteral("<Color>-16711936</Color><Pos>0,0</Pos><FontSize>12</FontSize>");
    }
    void untouchedPageWritesItsFirstItems()
    {
        QFETCH(QString, body);
        const int kind = QByteArray(QTest::currentDataTag()).toInt();
        QCOMPARE(writtenBy(kind, [] {}), body);
    }

    void colourPicturePageWritesScaleAndPosition()
    {
        QCOMPARE(writtenBy(0,
                           [this] {
                               pick(dialog(), "cbScaleModeRGB", 3);
                               pick(dialog(), "cbPosRGB", 1);
                           }),
                 QStringLiteral("<Scale>3</Scale><Pos>1</Pos>"));
    }

    void greyPagesWriteOfOverlayAndMaskOnlyWhatTheModeNeeds_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("body");
        for (int kind : {1, 2}) {
            const QByteArray page = Kinds.at(kind).toLatin1();
            QTest::newRow(page + " normal") << kind << "Normal"
                                            << "<Val>0</Val>";
            QTest::newRow(page + " overlay") << kind << "Lapped"
                                             << "<Lapped>1</Lapped><Val>1</Val>";
            QTest::newRow(page + " mask") << kind << "Mask"
                                          << "<Mask>1,2</Mask><Val>2</Val>";
        }
    }
    void greyPagesWriteOfOverlayAndMaskOnlyWhatTheModeNeeds()
    {
        QFETCH(int, kind);
        QFETCH(QString, mode);
        QFETCH(QString, body);
        const QByteArray page = Kinds.at(kind).toLatin1();
        const QString written = writtenBy(kind, [&] {
            pick(dialog(), "cbScaleMode" + page, 2);
            pick(dialog(), "cbPos" + page, 1);
            click(dialog(), "rbDrawModeLapped" + page);
            pick(dialog(), "cbLappedType" + page, 1);
            click(dialog(), "rbDrawModeMask" + page);
            pick(dialog(), "cbMaskVal" + page, 1);
            pick(dialog(), "cbMaskColor" + page, 2);
            click(dialog(), "rbDrawMode" + mode.toLatin1() + page);
        });
        QCOMPARE(written, QStringLiteral("<Scale>2</Scale><Pos>1</Pos><DrawMode>%1</DrawMode>").arg(body));
    }

    void choicesOfADrawModeAreOpenInThatModeOnly()
    {
        open(1, QString());
        QVERIFY(!child<QComboBox>(dialog(), "cbLappedTypeGray8")->isEnabled());
        QVERIFY(!child<QComboBox>(dialog(), "cbMaskValGray8")->isEnabled());
        click(dialog(), "rbDrawModeLappedGray8");
        QVERIFY(child<QComboBox>(dialog(), "cbLappedTypeGray8")->isEnabled());
        click(dialog(), "rbDrawModeMaskGray8");
        QVERIFY(!child<QComboBox>(dialog(), "cbLappedTypeGray8")->isEnabled());
        QVERIFY(child<QComboBox>(dialog(), "cbMaskValGray8")->isEnabled());
        QVERIFY(child<QComboBox>(dialog(), "cbMaskColorGray8")->isEnabled());
    }

    void sizesAreWrittenAsTheIndexOfTheirItem_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("start");
        QTest::newRow("cbSizePoints") << 3 << "<Size>8</Size><Color>";
        QTest::newRow("cbSizeLines") << 4 << "<Size>8</Size><DspLen>";
        QTest::newRow("cbSizePolys") << 5 << "<BorderSize>8</BorderSize><BorderColor>";
    }
    void sizesAreWrittenAsTheIndexOfTheirItem()
    {
        QFETCH(int, kind);
        QFETCH(QString, start);
        const QString written = writtenBy(kind, [this] { pick(dialog(), QTest::currentDataTag(), 8); });
        QCOMPARE(child<QComboBox>(dialog(), QTest::currentDataTag())->currentText(), QStringLiteral("9"));
        QVERIFY2(written.startsWith(start), qPrintable(written));
    }

    void shownLengthsAndAreasAreWrittenAsOne_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("element");
        QTest::newRow("cbDspLengthLines") << 4 << "<DspLen>1</DspLen>";
        QTest::newRow("cbDspAreaPolys") << 5 << "<DspArea>1</DspArea>";
        QTest::newRow("cbDspAreaAreas") << 6 << "<DspArea>1</DspArea>";
    }
    void shownLengthsAndAreasAreWrittenAsOne()
    {
        QFETCH(int, kind);
        QFETCH(QString, element);
        const QString written = writtenBy(kind, [this] { pick(dialog(), QTest::currentDataTag(), 1); });
        QVERIFY2(written.contains(element), qPrintable(written));
    }

    void stringsPageWritesPlaceAndFontSize()
    {
        QCOMPARE(writtenBy(7,
                           [this] {
                               type(dialog(), "edtPosX", QStringLiteral("-7"));
                               type(dialog(), "edtPosY", QStringLiteral("250"));
                               type(dialog(), "edtFontSize", QStringLiteral("32"));
                           }),
                 QStringLiteral("<Color>-16711936</Color><Pos>-7,250</Pos><FontSize>32</FontSize>"));
    }

    void numbersThatAreNoneBecomeZeroAndTheFontSizeIsRewritten()
    {
        QCOMPARE(writtenBy(7,
                           [this] {
                               type(dialog(), "edtPosX", QStringLiteral("left"));
                               type(dialog(), "edtPosY", QStringLiteral("1.5"));
                               type(dialog(), "edtFontSize", QStringLiteral("big"));
                           }),
                 QStringLiteral("<Color>-16711936</Color><Pos>0,0</Pos><FontSize>0</FontSize>"));
        QCOMPARE(text(dialog(), "edtFontSize"), QStringLiteral("0"));
        QCOMPARE(text(dialog(), "edtPosX"), QStringLiteral("left"));
    }

    void colourButtonsStartFlatAndVisible_data() { colourPages(); }
    void colourButtonsStartFlatAndVisible()
    {
        QFETCH(int, kind);
        const QString page = Kinds.at(kind);
        open(kind, QString());
        QVERIFY(colorButton(dialog(), page)->isFlat());
        QCOMPARE(colorOf(dialog(), page), QColor(0, 255, 0));
        const QImage picture = colorButton(dialog(), page)->grab().toImage();
        QCOMPARE(picture.pixelColor(picture.width() / 4, picture.height() / 2), QColor(0, 255, 0));
    }

    void chosenColourIsShownAndWritten_data() { colourPages(); }
    void chosenColourIsShownAndWritten()
    {
        QFETCH(int, kind);
        const QString page = Kinds.at(kind);
        QColor offered;
        const QString written = writtenBy(kind, [&] {
            const WhenModal<QColorDialog> user([&offered](QColorDialog& colors) {
                offered = colors.currentColor();
                colors.setCurrentColor(QColor(255, 0, 0));
                colors.accept();
            });
            click(dialog(), ("btnColor" + page).toLatin1());
            QVERIFY(user.came());
        });
        QCOMPARE(offered, QColor(0, 255, 0));
        QCOMPARE(colorOf(dialog(), page), QColor(255, 0, 0));
        QVERIFY2(written.contains(QStringLiteral("Color>-65536</")), qPrintable(written));
    }

    void cancelledColourChoiceKeepsTheColour_data() { colourPages(); }
    void cancelledColourChoiceKeepsTheColour()
    {
        QFETCH(int, kind);
        open(kind, QString());
        const WhenModal<QColorDialog> user([](QColorDialog& colors) {
            colors.setCurrentColor(QColor(255, 0, 0));
            QTest::keyClick(&colors, Qt::Key_Escape);
        });
        click(dialog(), ("btnColor" + Kinds.at(kind)).toLatin1());
        QVERIFY(user.came());
        QCOMPARE(colorOf(dialog(), Kinds.at(kind)), QColor(0, 255, 0));
    }

    void openedPageWritesWhatItWasOpenedWith_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("body");
        const auto row = [](const char* name, int kind, const char* body) {
            QTest::newRow(name) << kind << QString::fromUtf8(body);
        };
        row("colour picture", 0, "<Scale>3</Scale><Pos>1</Pos>");
        for (int kind : {1, 2}) {
            row("normal", kind, "<Scale>1</Scale><Pos>1</Pos><DrawMode><Val>0</Val></DrawMode>");
            row("overlay", kind, "<Scale>2</Scale><Pos>0</Pos><DrawMode><Lapped>1</Lapped><Val>1</Val></DrawMode>");
            row("mask", kind, "<Scale>0</Scale><Pos>1</Pos><DrawMode><Mask>1,2</Mask><Val>2</Val></DrawMode>");
        }
        row("points", 3, "<Size>4</Size><Color>-65281</Color>");
        row("lines", 4, "<Size>8</Size><DspLen>1</DspLen><Color>-256</Color>");
        row("polygons", 5, "<BorderSize>3</BorderSize><BorderColor>-16776961</BorderColor><DspArea>1</DspArea>");
        row("areas", 6, "<DspArea>1</DspArea><Color>-1</Color>");
        row("strings", 7, "<Color>-16777216</Color><Pos>-20,400</Pos><FontSize>9</FontSize>");
    }
    void openedPageWritesWhatItWasOpenedWith()
    {
        QFETCH(int, kind);
        QFETCH(QString, body);
        open(kind, body);
        click(dialog(), "btnSelectElement");
        click(dialog(), "btnOK");
        QCOMPARE(dialog().getConfigString(), optionText(kind, body));
    }

    void openedPageShowsItsCombosRadioAndColours()
    {
        open(1, QStringLiteral("<Scale>2</Scale><Pos>1</Pos><DrawMode><Mask>1,2</Mask><Val>2</Val></DrawMode>"));
        QCOMPARE(indexOf(dialog(), "cbScaleModeGray8"), 2);
        QCOMPARE(indexOf(dialog(), "cbPosGray8"), 1);
        QVERIFY(child<QRadioButton>(dialog(), "rbDrawModeMaskGray8")->isChecked());
        QCOMPARE(indexOf(dialog(), "cbMaskValGray8"), 1);
        QCOMPARE(indexOf(dialog(), "cbMaskColorGray8"), 2);
        // The other pages stay as they start.
        QCOMPARE(indexOf(dialog(), "cbScaleModeGray16"), 0);
        QVERIFY(child<QRadioButton>(dialog(), "rbDrawModeNormalGray16")->isChecked());

        open(0, QStringLiteral("<Scale>2</Scale><Pos>1</Pos>"));
        QCOMPARE(indexOf(dialog(), "cbScaleModeRGB"), 2);
        QCOMPARE(indexOf(dialog(), "cbScaleModeGray8"), 0);

        open(5, QStringLiteral("<BorderSize>3</BorderSize><BorderColor>-16776961</BorderColor><DspArea>1</DspArea>"));
        QCOMPARE(child<QComboBox>(dialog(), "cbSizePolys")->currentText(), QStringLiteral("4"));
        QCOMPARE(colorOf(dialog(), "Polys"), QColor(0, 0, 255));
        QCOMPARE(child<QComboBox>(dialog(), "cbDspAreaPolys")->currentText(), QStringLiteral("显示"));

        open(7, QStringLiteral("<Color>-1</Color><Pos>3,-4</Pos><FontSize>30</FontSize>"));
        QCOMPARE(text(dialog(), "edtPosX"), QStringLiteral("3"));
        QCOMPARE(text(dialog(), "edtPosY"), QStringLiteral("-4"));
        QCOMPARE(text(dialog(), "edtFontSize"), QStringLiteral("30"));
    }

    void emptyConfigurationShowsTheDefaultsThatAreDrawn()
    {
        open(4, QString());
        QCOMPARE(indexOf(dialog(), "cbSizeLines"), 1);  // Lines are one wide by default.
        QCOMPARE(indexOf(dialog(), "cbDspLengthLines"), 0);
        open(5, QString());
        QCOMPARE(indexOf(dialog(), "cbDspAreaPolys"), 0);
        open(6, QString());
        QCOMPARE(indexOf(dialog(), "cbDspAreaAreas"), 0);
        open(7, QString());
        QCOMPARE(text(dialog(), "edtFontSize"), QStringLiteral("12"));
    }

    void stringsWithoutFontSizeShowZeroAsTheyAreDrawn()
    {
        open(7, QStringLiteral("<Color>-1</Color>"));
        QCOMPARE(text(dialog(), "edtFontSize"), QStringLiteral("0"));
    }

    void nonsenseInTheConfigurationLeavesTheControlsAsTheyStart()
    {
        open(3, QStringLiteral("<Size>77</Size><Color>red</Color>"));
        QCOMPARE(indexOf(dialog(), "cbSizePoints"), 0);
        QCOMPARE(colorOf(dialog(), "Points"), QColor(0, 255, 0));
        open(0, QStringLiteral("<Scale>-1</Scale><Pos>2</Pos>"));
        QCOMPARE(indexOf(dialog(), "cbScaleModeRGB"), 0);
        QCOMPARE(indexOf(dialog(), "cbPosRGB"), 0);
        open(2, QStringLiteral("<DrawMode><Mask>,,,</Mask><Val>9</Val><Lapped>5</Lapped></DrawMode>"));
        QVERIFY(child<QRadioButton>(dialog(), "rbDrawModeNormalGray16")->isChecked());
    }

private:
    static void colourPages()
    {
        QTest::addColumn<int>("kind");
        for (int kind = 3; kind < Kinds.size(); ++kind)
            QTest::newRow(Kinds.at(kind).toLatin1()) << kind;
    }

    DlgDrawingConfig& dialog() { return *m_pcDialog; }

    void open(int kind, const QString& body)
    {
        m_pcDialog = std::make_unique<DlgDrawingConfig>(optionText(kind, body), m_pcStore, nullptr);
        m_pcDialog->show();
    }

    /// The body that OK writes for a new step after the user did something on a page and chose its only record.
    template <typename Act>
    QString writtenBy(int kind, Act act)
    {
        m_pcDialog = std::make_unique<DlgDrawingConfig>(QString(), m_pcStore, nullptr);
        dialog().show();
        child<QTabWidget>(dialog(), "tabDataType")->setCurrentIndex(kind);
        clickCell(child<QTableWidget>(dialog(), ("tbl" + Kinds.at(kind)).toLatin1()), 0);
        act();
        click(dialog(), "btnSelectElement");
        click(dialog(), "btnOK");
        const QString start = QStringLiteral("<DataType>%1</DataType><DataID>1</DataID><Config>").arg(kind);
        const QString end = QStringLiteral("</Config>");
        const QString result = dialog().getConfigString();
        if (!result.startsWith(start) || !result.endsWith(end))
            return QStringLiteral("unexpected: ") + result;
        return result.mid(start.size(), result.size() - start.size() - end.size());
    }

    ArithmParamMgr* m_pcStore = nullptr;
    std::unique_ptr<DlgDrawingConfig> m_pcDialog;
};

QTEST_MAIN(DrawingDialogPagesTest)
#include "drawingDialogPagesTest.moc"
