#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <dlfcn.h>

/**
 * Makes the plug-in folders beside a test program and fills them with copies of the suite's own plug-ins.
 *
 * Call clear() and then add…() before the first getInstance() of the registry in question: a registry is filled once.
 * The test needs DEPENDS lumivantTestPlugins. Example:
 *
 *     PluginFolders::clear();
 *     const QString echo = PluginFolders::addBase("algorithmEcho");
 *     … PluginFolders::algorithmCalls(echo, "execute") …
 *
 * Algorithms (class, name, identifier):
 * - algorithmEcho: "Test", "Echo", "Test.Echo". Its result is its option text, so an option makes any result. Its
 *   configuration window returns its option text, or what setConfigResult() says; counts calls of every entry point;
 *   testFirstCall() tells their order.
 * - algorithmSlow: "Test", "Slow", "Test.Slow". Option "milliseconds;result"; testRunning() says how many calls are
 *   inside execute; counts "execute".
 * - algorithmTrace: "Test", "Trace", "Test.Trace". Appends its option to the strings record 900; empty result.
 * - algorithmChinese: as Echo with "滤波", "中值滤波", "测试.中值".
 * - algorithmDrawingID: as Echo with "Impostor", "Not Drawing", and the identifier of a built-in, "KW_Drawing".
 * - algorithmTwinA, algorithmTwinB: as Echo, both "Twins", "Twin", with "Test.TwinA" and "Test.TwinB".
 * - algorithmSameIDA, algorithmSameIDB: as Echo, "Same", "First" and "Second", both "Test.Same".
 * - algorithmLateLoading: as Echo with "Late" and "Test.Late"; being asked for its class, or the first
 *   times for its identifier, takes 200 ms.
 * - algorithmNull: answers null to everything.
 * - algorithmLacks_<symbol>: four of the five entry points.
 * - algorithmUnresolved: needs a function that nobody has.
 *
 * Data sources (name):
 * - sourceScripted ("Test Scripted"): does what its configuration text "key=value;key=value" says:
 *   size=WxH,WxH,… sizes of the pictures in turn (4x3); report=WxH,… what it says about them when that is not true;
 *   count=n pictures until there is none any more; null=1 reports a size and no buffer; wait=ms inside each request;
 *   needsStart=1 delivers only between start and stop; error=text its last error (else the library's own name).
 *   Picture n (from 0) has (n + 7 * row + 3 * byte in row) modulo 256 in each byte and 0xEE in padding bytes; after
 *   releasePicture its buffer holds other bytes. Its dialog returns the text that it is given, or what
 *   setDialogResult() says. Counts calls of every entry point by instance ("showConfigDlg" under 0), and requests by
 *   their type text.
 * - sourceUpperCamera ("Camera"), sourceLowerCamera ("camera"), sourceMemoryDisk3 ("Memory Disk 3"),
 *   sourceTwinA and sourceTwinB (both "Test Twin"), sourceChineseGb18030 ("相机" in GB18030): as sourceScripted.
 * - sourceLateLoading ("Test Late"): as sourceScripted; being asked for its name takes 200 ms.
 * - sourceNull: answers null to everything, its name too.
 * - sourceLacks_<symbol>: eight of the nine entry points. sourceUnresolved: needs a function that nobody has.
 */
class PluginFolders
{
public:
    /// The folder of the test program.
    static QString folder() { return QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath(); }

    /// Where the built libraries lie.
    static QString built(const QString& library)
    {
        return QStringLiteral(LUMIVANT_TEST_PLUGINS "/") + library + QStringLiteral(".so");
    }

    /// Removes what an earlier run left.
    static void clear()
    {
        for (const char* name : {"baseArithm", "extArithm", "DataSource"})
            QDir(folder() + QLatin1Char('/') + QLatin1String(name)).removeRecursively();
    }

    /// @name Copies a library into a folder, under another file name if one is given; the path of the copy.
    /// @{
    static QString addBase(const QString& library, const QString& fileName = {})
    {
        return copy(library, QStringLiteral("baseArithm"), fileName);
    }
    static QString addExtension(const QString& library, const QString& fileName = {})
    {
        return copy(library, QStringLiteral("extArithm"), fileName);
    }
    static QString addSource(const QString& library, const QString& fileName = {})
    {
        return copy(library, QStringLiteral("DataSource"), fileName);
    }
    /// @}

    /// Writes a file of any content into one of the three folders; its path.
    static QString write(const QString& subFolder, const QString& fileName, const QByteArray& content)
    {
        QDir(folder()).mkpath(subFolder);
        const QString path = folder() + QLatin1Char('/') + subFolder + QLatin1Char('/') + fileName;
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("Cannot write %s", qPrintable(path));
        return path;
    }

    static bool isLoaded(const QString& path) { return handle(path) != nullptr; }

    /// A function of a library that is loaded; ends the test when there is none.
    template <typename Function>
    static Function function(const QString& path, const char* symbol)
    {
        void* library = handle(path);
        void* address = library ? dlsym(library, symbol) : nullptr;
        if (!address)
            qFatal("%s has no %s, or is not loaded", qPrintable(path), symbol);
        return reinterpret_cast<Function>(address);
    }

    static int algorithmCalls(const QString& path, const char* entry)
    {
        return function<int (*)(const char*)>(path, "testCalls")(entry);
    }

    static int sourceCalls(const QString& path, const char* entry, int instance)
    {
        return function<int (*)(const char*, int)>(path, "testCalls")(entry, instance);
    }

    /// The instance that was configured last.
    static int lastInstance(const QString& path) { return function<int (*)()>(path, "testLastInstance")(); }

    /// What the configuration window of an algorithm returns from now on; null for the option text itself.
    static void setConfigResult(const QString& path, const char* result)
    {
        function<void (*)(const char*)>(path, "testSetConfigResult")(result);
    }

    /// What the dialog of a source returns from now on; null for the text that it is given.
    static void setDialogResult(const QString& path, const char* result)
    {
        function<void (*)(const char*)>(path, "testSetDialogResult")(result);
    }

private:
    static QString copy(const QString& library, const QString& subFolder, const QString& fileName)
    {
        QFile file(built(library));
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s is not built", qPrintable(file.fileName()));
        return write(subFolder, fileName.isEmpty() ? library + QStringLiteral(".so") : fileName, file.readAll());
    }

    /// The handle of a library that is loaded already, or null.
    static void* handle(const QString& path)
    {
        void* library = dlopen(QFile::encodeName(path).constData(), RTLD_LAZY | RTLD_NOLOAD);
        if (library)
            dlclose(library);  // Only the count that dlopen just added.
        return library;
    }
};
