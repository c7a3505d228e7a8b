#pragma once

#include "findContoursOption.h"

#include <stepDialog.h>

/// The dialog of "查找轮廓".
class FindContoursDialog : public StepDialog
{
public:
    FindContoursDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    FindContoursOption m_cOption;
    QSpinBox* m_pcMinSize;  ///< This and the next are owned by the dialog.
    QSpinBox* m_pcMinPoints;
    QSpinBox* m_pcTolerance;
    QLineEdit* m_pcOutput;
};
