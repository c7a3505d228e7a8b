#include "findAreasDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>

FindAreasDialog::FindAreasDialog(const QString& option, ArithmParamMgr& store)
    : StepDialog(QStringLiteral("查找区域"), store), m_cOption(FindAreasOption::read(option))
{
    listInputs({PictureKind::Gray}, m_cOption.input);
    m_pcMinSize =
        addNumber("spnMinSize", QStringLiteral("最小面积"), 1, FindAreasOption::LargestSize, m_cOption.minSize);
    m_pcMaxSize =
        addNumber("spnMaxSize", QStringLiteral("最大面积"), 0, FindAreasOption::LargestSize, m_cOption.maxSize);
    m_pcMaxSize->setSpecialValueText(QStringLiteral("不限"));
    m_pcPrint = addFlag("chkPrint", QStringLiteral("输出区域个数"), m_cOption.print);
    m_pcWhenNone = addChoice("cmbWhenNone", QStringLiteral("没有找到时"),
                             {QStringLiteral("继续"), QStringLiteral("跳过后面的步骤"), QStringLiteral("停止任务")},
                             m_cOption.whenNone);
    m_pcSkipSteps = addNumber("spnSkipSteps", QStringLiteral("跳过步数"), 1, FindAreasOption::MostSkippedSteps,
                              m_cOption.skipSteps);
    m_pcAreas = addOutput("edtAreas", QStringLiteral("区域"), m_cOption.areas);
    m_pcCount = addOutput("edtCount", QStringLiteral("区域个数"), m_cOption.count);

    const auto showUsed = [this](int choice) { m_pcSkipSteps->setEnabled(choice == FindAreasOption::Skip); };
    connect(m_pcWhenNone, QOverload<int>::of(&QComboBox::currentIndexChanged), this, showUsed);
    showUsed(m_cOption.whenNone);
}

QString FindAreasDialog::acceptedOption()
{
    m_cOption.input = input();
    m_cOption.minSize = m_pcMinSize->value();
    m_cOption.maxSize = m_pcMaxSize->value();
    m_cOption.print = m_pcPrint->isChecked();
    m_cOption.whenNone = m_pcWhenNone->currentIndex();
    m_cOption.skipSteps = m_pcSkipSteps->value();
    m_cOption.areas.rename(m_pcAreas->text());
    m_cOption.areas.make(store(), &ArithmParamMgr::getParamAreas);
    m_cOption.count.rename(m_pcCount->text());
    m_cOption.count.make(store(), &ArithmParamMgr::getParamStrings);
    return m_cOption.write();
}
