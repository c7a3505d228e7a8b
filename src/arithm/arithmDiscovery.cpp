#include "arithm/arithm.h"
#include "arithm/arithmFactory.h"
#include "arithm/loadWarning.h"
#include "pluginLibrary.h"

namespace {

const QVector<const char*> EntryNames = {"getID", "showConfigWindow", "execute", "getArithmClass", "getArithmName"};
enum EntryIndex
{
    GetID,
    ShowConfigWindow,
    Execute,
    GetClass,
    GetName,
};
using GetText = const char* (*)();

Arithm* makeArithm(const PluginLibrary& library, bool extLib)
{
    return new Arithm(extLib, library.entry<Arithm::GetID>(GetID),
                      library.entry<Arithm::ShowConfigWindow>(ShowConfigWindow),
                      library.entry<Arithm::Execute>(Execute));
}

}  // namespace

void ArithmFactory::discover(const QString& folder, bool extLib)
{
    const QStringList paths = PluginLibrary::filesIn(folder);
    for (const QString& path : paths) {
        PluginLibrary library(path, EntryNames);
        // An extension library that does not load is left out in silence.
        if (library.state() == PluginLibrary::State::Unloadable && !extLib)
            showLoadWarning(library.errorString());
        if (library.state() != PluginLibrary::State::Complete)
            continue;
        Arithm* arithm = makeArithm(library, extLib);
        // The class first, each text copied before the next is asked for: a library may keep both in one place.
        const QString cls = QString::fromUtf8(library.entry<GetText>(GetClass)());
        const QString name = QString::fromUtf8(library.entry<GetText>(GetName)());
        registerArithm(cls, name, arithm);
        m_lstLibraries.append(library.takeLibrary().release());
    }
}
