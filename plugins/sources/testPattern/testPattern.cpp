#include "testPatternDialog.h"
#include "testPatternPlayer.h"

#include <lumivant/dataSource.h>
#include <sourceEntry.h>

using Entry = SourceEntry<TestPatternPlayer, TestPatternDialog>;

const char* getDataSourceName()
{
    return "Test Pattern";
}

unsigned char* requestPicture(int instance, const char* type, int* width, int* height)
{
    return Entry::requestPicture(instance, type, width, height);
}

void releasePicture(int instance)
{
    Entry::releasePicture(instance);
}

char* showConfigDlg(char* config, bool)
{
    return Entry::showConfigDlg(config);
}

void setConfig(int instance, char* config)
{
    Entry::setConfig(instance, config);
}

void start(int instance)
{
    Entry::start(instance);
}

void stop(int instance)
{
    Entry::stop(instance);
}

void removeInstance(int instance)
{
    Entry::removeInstance(instance);
}

char* getLastError(int instance)
{
    return Entry::getLastError(instance);
}
