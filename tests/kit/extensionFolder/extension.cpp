// The smallest algorithm that there is. It includes every header of the kit, each by its plain name.
#include <arithmParam.h>
#include <arithmParamMgr.h>
#include <lumivant/algorithm.h>
#include <lumivant/dataSource.h>
#include <paramExport.h>
#include <paramLists.h>
#include <paramPictures.h>
#include <pictureLayout.h>

const char* getID()
{
    return "Test_Extension";
}

const char* getArithmClass()
{
    return "Test";
}

const char* getArithmName()
{
    return "Extension";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return option;
}

char* execute(char*, ArithmParamMgr* store)
{
    store->getParamPoints(1)->replaceAll({{1, 2}});
    return nullptr;
}
