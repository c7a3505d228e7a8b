#pragma once

#include "blurOption.h"

#include <stepDialog.h>

/// The dialog of "模糊".
class BlurDialog : public StepDialog
{
public:
    BlurDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    BlurOption m_cOption;
    QComboBox* m_pcMethod;  ///< This and the next are owned by the dialog.
    QSpinBox* m_pcSize;
    QLineEdit* m_pcOutput;
};
