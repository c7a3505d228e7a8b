#pragma once

#include "toGray16Option.h"

#include <stepDialog.h>

/// The dialog of "彩色转16位灰度".
class ToGray16Dialog : public StepDialog
{
public:
    ToGray16Dialog(const QString& option, ArithmParamMgr& store);

    QString acceptedOption();  ///< The option text of what is shown; makes the output records.

private:
    ToGray16Option m_cOption;
    QLineEdit* m_pcOutput;  ///< Owned by the dialog.
};
