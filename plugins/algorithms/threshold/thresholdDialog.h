#pragma once

#include "thresholdOption.h"

#include <stepDialog.h>

/// The dialog of "二值化".
class ThresholdDialog : public StepDialog
{
public:
    ThresholdDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    ThresholdOption m_cOption;
    QComboBox* m_pcMethod;  ///< This and the next are owned by the dialog.
    QSpinBox* m_pcValue;
    QSpinBox* m_pcBlockSize;
    QSpinBox* m_pcOffset;
    QCheckBox* m_pcInvert;
    QLineEdit* m_pcOutput;
};
