// A data source that calls a function which no library has.
#include <lumivant/dataSource.h>

extern "C" unsigned char* lumivantTestFunctionThatNobodyHas();

const char* getDataSourceName()
{
    return "Test Unresolved";
}

unsigned char* requestPicture(int, const char*, int*, int*)
{
    return lumivantTestFunctionThatNobodyHas();
}

void releasePicture(int) {}

char* showConfigDlg(char* config, bool)
{
    return config;
}

void setConfig(int, char*) {}
void start(int) {}
void stop(int) {}
void removeInstance(int) {}

char* getLastError(int)
{
    return nullptr;
}
