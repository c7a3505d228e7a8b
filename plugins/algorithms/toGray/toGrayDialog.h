#pragma once

#include "toGrayOption.h"

#include <stepDialog.h>

/// The dialog of "彩色转灰度".
class ToGrayDialog : public StepDialog
{
public:
    ToGrayDialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    ToGrayOption m_cOption;
    QLineEdit* m_pcOutput;  ///< Owned by the dialog.
};
