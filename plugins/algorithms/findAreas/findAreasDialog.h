#pragma once

#include "findAreasOption.h"

#include <stepDialog.h>

/// The dialog of "查找区域".
class FindAreasDialog : public StepDialog
{
public:
    FindAreasDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    FindAreasOption m_cOption;
    QSpinBox* m_pcMinSize;  ///< This and the next are owned by the dialog.
    QSpinBox* m_pcMaxSize;
    QCheckBox* m_pcPrint;
    QComboBox* m_pcWhenNone;
    QSpinBox* m_pcSkipSteps;
    QLineEdit* m_pcAreas;
    QLineEdit* m_pcCount;
};
