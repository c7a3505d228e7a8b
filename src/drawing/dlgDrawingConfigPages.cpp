// The pages of the drawing dialog: one form of configuration each, taken from its controls and shown by them.
#include "drawing/dlgDrawingConfig.h"
#include "drawing/drawingConfigText.h"
#include "optionText.h"
#include "ui_dlgDrawingConfig.h"

#include <QColorDialog>

using namespace DrawingConfigText;

namespace {

// Visible on the black of an empty view and on most pictures; the same with red and blue exchanged.
constexpr QRgb FirstColor = 0xFF00FF00;

/// The controls of one of the two grey pages.
struct GrayControls
{
    QComboBox* m_pcScaleMode;
    QComboBox* m_pcPos;
    QRadioButton* m_pcNormal;
    QRadioButton* m_pcLapped;
    QRadioButton* m_pcMask;
    QComboBox* m_pcLappedType;
    QComboBox* m_pcMaskVal;
    QComboBox* m_pcMaskColor;
};

GrayControls gray8Controls(const Ui::DlgDrawingConfig& ui)
{
    return {ui.cbScaleModeGray8,    ui.cbPosGray8,        ui.rbDrawModeNormalGray8, ui.rbDrawModeLappedGray8,
            ui.rbDrawModeMaskGray8, ui.cbLappedTypeGray8, ui.cbMaskValGray8,        ui.cbMaskColorGray8};
}

GrayControls gray16Controls(const Ui::DlgDrawingConfig& ui)
{
    return {ui.cbScaleModeGray16,    ui.cbPosGray16,        ui.rbDrawModeNormalGray16, ui.rbDrawModeLappedGray16,
            ui.rbDrawModeMaskGray16, ui.cbLappedTypeGray16, ui.cbMaskValGray16,        ui.cbMaskColorGray16};
}

QColor colorOf(const QPushButton* button)
{
    return button->palette().color(QPalette::Button);
}

void setColor(QPushButton* button, const QColor& color)
{
    QPalette palette = button->palette();
    palette.setBrush(QPalette::Button, color);
    button->setPalette(palette);
}

int numberOf(const QPushButton* button)
{
    return static_cast<int>(colorOf(button).rgb());
}

void setNumber(QPushButton* button, int color)
{
    setColor(button, QColor(static_cast<QRgb>(color)));
}

/// Selects the item; an index that the combo box does not have leaves it as it is.
void selectItem(QComboBox* combo, int index)
{
    if (combo->model()->hasIndex(index, 0))
        combo->setCurrentIndex(index);
}

/// What the body says; an empty body leaves the defaults.
template <typename Config>
Config configFrom(Config defaults, const QString& body)
{
    const OptionReader reader(body);
    if (!reader.isEmpty())
        defaults.read(reader);
    return defaults;
}

/// As configFrom; the button shows the colour, and keeps its own when the body names none.
template <typename Config>
Config coloredConfig(QPushButton* button, int Config::*color, const QString& body)
{
    Config defaults;
    defaults.*color = numberOf(button);
    const Config config = configFrom(defaults, body);
    setNumber(button, config.*color);
    return config;
}

GrayConfig grayConfig(const GrayControls& controls)
{
    GrayConfig config;
    config.m_cImage = {controls.m_pcScaleMode->currentIndex(), controls.m_pcPos->currentIndex()};
    if (controls.m_pcLapped->isChecked())
        config.m_nDrawMode = 1;
    else if (controls.m_pcMask->isChecked())
        config.m_nDrawMode = 2;
    config.m_nLapped = controls.m_pcLappedType->currentIndex();
    config.m_nMaskVal = controls.m_pcMaskVal->currentIndex();
    config.m_nMaskColor = controls.m_pcMaskColor->currentIndex();
    return config;
}

QRadioButton* modeButton(const GrayControls& controls, int drawMode)
{
    if (drawMode == 1)
        return controls.m_pcLapped;
    return drawMode == 2 ? controls.m_pcMask : controls.m_pcNormal;
}

void showGray(const GrayControls& controls, const QString& body)
{
    const GrayConfig config = configFrom(GrayConfig(), body);
    selectItem(controls.m_pcScaleMode, config.m_cImage.m_nScaleType);
    selectItem(controls.m_pcPos, config.m_cImage.m_nAlignType);
    modeButton(controls, config.m_nDrawMode)->setChecked(true);
    selectItem(controls.m_pcLappedType, config.m_nLapped);
    selectItem(controls.m_pcMaskVal, config.m_nMaskVal);
    selectItem(controls.m_pcMaskColor, config.m_nMaskColor);
}

}  // namespace

// ---- From the controls ----------------------------------------------------------------------------------------------
// Kept on purpose: sizes are written as the index of the item, so the item "1" writes 0.

QString DlgDrawingConfig::bodyOfPage(int kind)
{
    switch (kind) {
    case ColourImage:
        return ImageConfig{m_pcUi->cbScaleModeRGB->currentIndex(), m_pcUi->cbPosRGB->currentIndex()}.write();
    case Gray8Image:
        return grayConfig(gray8Controls(*m_pcUi)).write();
    case Gray16Image:
        return grayConfig(gray16Controls(*m_pcUi)).write();
    case Points:
        return PointsConfig{m_pcUi->cbSizePoints->currentIndex(), numberOf(m_pcUi->btnColorPoints)}.write();
    case Lines:
        return LinesConfig{m_pcUi->cbSizeLines->currentIndex(), numberOf(m_pcUi->btnColorLines),
                           m_pcUi->cbDspLengthLines->currentIndex() == 1}
            .write();
    case Polys:
        return PolysConfig{m_pcUi->cbSizePolys->currentIndex(), numberOf(m_pcUi->btnColorPolys),
                           m_pcUi->cbDspAreaPolys->currentIndex() == 1}
            .write();
    case Areas:
        return AreasConfig{numberOf(m_pcUi->btnColorAreas), m_pcUi->cbDspAreaAreas->currentIndex() == 1}.write();
    default:
        return stringsBody();
    }
}

QString DlgDrawingConfig::stringsBody()
{
    const StringsConfig config{numberOf(m_pcUi->btnColorStrings), m_pcUi->edtPosX->text().toInt(),
                               m_pcUi->edtPosY->text().toInt(), m_pcUi->edtFontSize->text().toInt()};
    m_pcUi->edtFontSize->setText(QString::number(config.m_nFontSize));
    return config.write();
}

// ---- Onto the controls ----------------------------------------------------------------------------------------------

void DlgDrawingConfig::parseConfigString()
{
    switch (m_pcUi->tabDataType->currentIndex()) {
    case ColourImage: {
        const ImageConfig config = configFrom(ImageConfig(), m_strBody);
        selectItem(m_pcUi->cbScaleModeRGB, config.m_nScaleType);
        selectItem(m_pcUi->cbPosRGB, config.m_nAlignType);
        return;
    }
    case Gray8Image:
        return showGray(gray8Controls(*m_pcUi), m_strBody);
    case Gray16Image:
        return showGray(gray16Controls(*m_pcUi), m_strBody);
    case Points:
        return showPoints();
    case Lines:
        return showLines();
    case Polys:
        return showPolys();
    case Areas:
        return showAreas();
    case Strings:
        return showStrings();
    default:
        break;
    }
}

void DlgDrawingConfig::showPoints()
{
    const auto config = coloredConfig(m_pcUi->btnColorPoints, &PointsConfig::m_nColor, m_strBody);
    selectItem(m_pcUi->cbSizePoints, config.m_nSize);
}

void DlgDrawingConfig::showLines()
{
    const auto config = coloredConfig(m_pcUi->btnColorLines, &LinesConfig::m_nColor, m_strBody);
    selectItem(m_pcUi->cbSizeLines, config.m_nSize);
    selectItem(m_pcUi->cbDspLengthLines, config.m_bDisplayLength ? 1 : 0);
}

void DlgDrawingConfig::showPolys()
{
    const auto config = coloredConfig(m_pcUi->btnColorPolys, &PolysConfig::m_nBorderColor, m_strBody);
    selectItem(m_pcUi->cbSizePolys, config.m_nBorderSize);
    selectItem(m_pcUi->cbDspAreaPolys, config.m_bDisplayArea ? 1 : 0);
}

void DlgDrawingConfig::showAreas()
{
    const auto config = coloredConfig(m_pcUi->btnColorAreas, &AreasConfig::m_nColor, m_strBody);
    selectItem(m_pcUi->cbDspAreaAreas, config.m_bDisplayArea ? 1 : 0);
}

void DlgDrawingConfig::showStrings()
{
    const auto config = coloredConfig(m_pcUi->btnColorStrings, &StringsConfig::m_nColor, m_strBody);
    m_pcUi->edtPosX->setText(QString::number(config.m_nPosX));
    m_pcUi->edtPosY->setText(QString::number(config.m_nPosY));
    m_pcUi->edtFontSize->setText(QString::number(config.m_nFontSize));
}

// ---- Colour buttons -------------------------------------------------------------------------------------------------

void DlgDrawingConfig::paintColorButtons()
{
    for (QPushButton* button : {m_pcUi->btnColorPoints, m_pcUi->btnColorLines, m_pcUi->btnColorPolys,
                                m_pcUi->btnColorAreas, m_pcUi->btnColorStrings}) {
        button->setAutoFillBackground(true);
        setColor(button, QColor(FirstColor));
    }
}

void DlgDrawingConfig::askColor(QPushButton* button)
{
    const QColor color = QColorDialog::getColor(colorOf(button), this, QString(), QColorDialog::DontUseNativeDialog);
    if (!color.isValid())
        return;
    setColor(button, color);
    focusNextChild();
}

void DlgDrawingConfig::on_btnColorPoints_clicked()
{
    askColor(m_pcUi->btnColorPoints);
}

void DlgDrawingConfig::on_btnColorLines_clicked()
{
    askColor(m_pcUi->btnColorLines);
}

void DlgDrawingConfig::on_btnColorPolys_clicked()
{
    askColor(m_pcUi->btnColorPolys);
}

void DlgDrawingConfig::on_btnColorAreas_clicked()
{
    askColor(m_pcUi->btnColorAreas);
}

void DlgDrawingConfig::on_btnColorStrings_clicked()
{
    askColor(m_pcUi->btnColorStrings);
}
