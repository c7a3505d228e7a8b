#pragma once

#include "findLinesOption.h"

#include <stepDialog.h>

/// The dialog of "查找直线".
class FindLinesDialog : public StepDialog
{
public:
    FindLinesDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    FindLinesOption m_cOption;
    QSpinBox* m_pcLowEdge;  ///< This and the next are owned by the dialog.
    QSpinBox* m_pcHighEdge;
    QSpinBox* m_pcVotes;
    QSpinBox* m_pcMinLength;
    QSpinBox* m_pcMaxGap;
    QLineEdit* m_pcOutput;
};
