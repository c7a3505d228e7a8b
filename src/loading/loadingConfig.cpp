#include "configDialog.h"
#include "loading/dlgLoadFile.h"
#include "loading/loading.h"

char* Loading::showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    QString text = ConfigDialog::textOf<DlgLoadFile>(option, store);
    return transConfigStr(text);
}
