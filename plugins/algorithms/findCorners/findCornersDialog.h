#pragma once

#include "findCornersOption.h"

#include <stepDialog.h>

/// The dialog of "查找角点".
class FindCornersDialog : public StepDialog
{
public:
    FindCornersDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    FindCornersOption m_cOption;
    QSpinBox* m_pcMaxCount;  ///< This and the next are owned by the dialog.
    QSpinBox* m_pcQuality;
    QSpinBox* m_pcMinDistance;
    QLineEdit* m_pcOutput;
};
