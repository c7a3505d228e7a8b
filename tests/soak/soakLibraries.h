#pragma once

#include "pluginFolders.h"
#include "soakLedger.h"

#include <array>

/// The soak's own libraries beside the program, and what they tell; they are loaded by the real discovery.
class SoakLibraries
{
public:
    /// Call before the first use of a registry.
    static void install()
    {
        PluginFolders::clear();
        s_strProbe = PluginFolders::addBase(QStringLiteral("soakProbe"));
        s_strSource = PluginFolders::addSource(QStringLiteral("soakSource"));
        PluginFolders::addBase(QStringLiteral("algorithmSlow"));
        PluginFolders::addExtension(QStringLiteral("algorithmTrace"));
    }

    /// A picture that was taken off a disk by hand.
    static void take(int disk, bool colour, const unsigned char* pixels, int width, int height)
    {
        using Take = void (*)(int, bool, const unsigned char*, int, int);
        PluginFolders::function<Take>(s_strProbe, "soakTake")(disk, colour, pixels, width, height);
    }

    /// The waiting pictures of a disk were cleared.
    static void excuse(int disk, bool colour)
    {
        PluginFolders::function<void (*)(int, bool)>(s_strProbe, "soakExcuse")(disk, colour);
    }

    /// What is to be told, every few milliseconds, which pools have a free slot.
    using See = void (*)(const std::array<bool, SoakLedger::PoolNum>*);
    static See see() { return PluginFolders::function<See>(s_strProbe, "soakSee"); }

    static void close() { PluginFolders::function<void (*)()>(s_strProbe, "soakClose")(); }

    static QString problems()
    {
        return QString::fromStdString(PluginFolders::function<const char* (*)()>(s_strProbe, "soakProblems")());
    }

    static SoakLedger::Counts counts()
    {
        SoakLedger::Counts counts;
        PluginFolders::function<void (*)(SoakLedger::Counts*)>(s_strProbe, "soakCounts")(&counts);
        return counts;
    }

    static int sourceInstances() { return PluginFolders::function<int (*)()>(s_strSource, "soakInstances")(); }

private:
    static inline QString s_strProbe;
    static inline QString s_strSource;
};
