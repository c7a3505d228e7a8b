#include "fuzzSupport.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace Fuzz {

void startProgram()
{
    static int s_nArguments = 1;
    static char s_achName[] = "fuzz";
    static char* s_apchArguments[] = {s_achName, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static auto* const s_pcApplication = new QGuiApplication(s_nArguments, s_apchArguments);
    Q_UNUSED(s_pcApplication)
}

void expect(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", what);
    std::abort();
}

void expectEqual(const QString& found, const QString& wanted, const char* what)
{
    if (found == wanted)
        return;
    std::fprintf(stderr, "Found:  %s\nWanted: %s\n", qUtf8Printable(found), qUtf8Printable(wanted));
    expect(false, what);
}

QString scratchFolder()
{
    static const QTemporaryDir s_cFolder;
    expect(s_cFolder.isValid(), "a scratch folder can be made");
    return s_cFolder.path();
}

}  // namespace Fuzz
