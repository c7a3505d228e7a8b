#include "configDialog.h"
#include "saving/dlgSaveFile.h"
#include "saving/saving.h"

char* Saving::showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    QString text = ConfigDialog::textOf<DlgSaveFile>(option, store);
    return transConfigStr(text);
}
