// A data source that answers null to everything.
#include <lumivant/dataSource.h>

const char* getDataSourceName()
{
    return nullptr;
}

unsigned char* requestPicture(int, const char*, int*, int*)
{
    return nullptr;
}

void releasePicture(int) {}

char* showConfigDlg(char*, bool)
{
    return nullptr;
}

void setConfig(int, char*) {}
void start(int) {}
void stop(int) {}
void removeInstance(int) {}

char* getLastError(int)
{
    return nullptr;
}
