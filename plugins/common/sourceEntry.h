#pragma once

#include "guarded.h"
#include "instanceTable.h"
#include "resultBuffer.h"

#include <QDialog>

#include <cstring>

/**
 * What the exported functions of the data sources share. Nothing that is thrown leaves them.
 *
 * @tparam Player one instance: setConfig, start, stop, request, release, lastError
 * @tparam Dialog made from a configuration text, gives one back by configText
 */
template <typename Player, typename Dialog>
struct SourceEntry
{
    static unsigned char* requestPicture(int instance, const char* type, int* width, int* height)
    {
        *width = *height = 0;
        return guarded([&]() -> unsigned char* {
            const auto player = players().find(instance);
            if (!player || !isKnownType(type))
                return nullptr;
            return player->request(std::strcmp(type, "Gray8") == 0, *width, *height);
        });
    }

    static void releasePicture(int instance)
    {
        guarded([&] {
            if (const auto player = players().find(instance))
                player->release();
        });
    }

    /// The configuration to keep: the given one when the user cancelled.
    static char* showConfigDlg(const char* config)
    {
        return guarded([&] {
            const QString text = QString::fromUtf8(config);
            Dialog dialog(text);
            return keepText(dialog.exec() == QDialog::Accepted ? dialog.configText() : text);
        });
    }

    static void setConfig(int instance, const char* config)
    {
        guarded([&] { players().findOrMake(instance)->setConfig(QString::fromUtf8(config)); });
    }

    static void start(int instance)
    {
        guarded([&] {
            if (const auto player = players().find(instance))
                player->start();
        });
    }

    static void stop(int instance)
    {
        guarded([&] {
            if (const auto player = players().find(instance))
                player->stop();
        });
    }

    static void removeInstance(int instance)
    {
        guarded([&] { players().remove(instance); });
    }

    static char* getLastError(int instance)
    {
        return guarded([&] {
            const auto player = players().find(instance);
            return keepText(player ? player->lastError() : QString());
        });
    }

private:
    static InstanceTable<Player>& players()
    {
        static InstanceTable<Player> s_cPlayers;
        return s_cPlayers;
    }

    static bool isKnownType(const char* type)
    {
        return type && (std::strcmp(type, "RGB") == 0 || std::strcmp(type, "Gray8") == 0);
    }
};
